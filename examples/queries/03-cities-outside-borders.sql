-- A check of the data: the borders are generalised, so some cities on a coast lie in no country at all.
-- Where does that happen most often?
Select k.name_long As country, Count(*) As cities
From cities c Join countries k On k.iso_a2 = c.country
Where Not Exists (Select 1 From countries around Where c.obj Within around.obj)
Group By k.name_long
Order By cities Desc, country
Limit 8
