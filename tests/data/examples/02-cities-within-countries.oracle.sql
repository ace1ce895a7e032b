Select k.name_long As country, Count(*) As cities, Sum(c.population) As people
From countries k, cities c
Where ST_Within(c.geometry, k.geom) Group By k.name_long Order By cities Desc, country Limit 10
