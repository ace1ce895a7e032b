Select k.name_long As country, Count(*) As cities
From cities c Join countries k On k.iso_a2 = c.country
Where Not Exists (Select 1 From countries around Where ST_Within(c.geometry, around.geom))
Group By k.name_long Order By cities Desc, country Limit 8
