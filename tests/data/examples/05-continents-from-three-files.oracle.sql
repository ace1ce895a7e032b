With totals As (Select country, Sum(population) As people From cities Group By country)
Select k.continent, Count(*) As countries, Sum(Case When i.unemployment <> 'NA' Then 1 Else 0 End) As known,
       Round(Avg(Case When i.unemployment <> 'NA' Then Cast(i.unemployment As Real) End), 2) As unemployment,
       Sum((Select people From totals Where totals.country = k.iso_a2)) As city_people
From countries k Left Join indicators i On i.name = k.name_long
Group By k.continent Order By countries Desc, k.continent
