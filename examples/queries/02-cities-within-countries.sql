-- In which countries do most large cities lie, and how many people live in them? The borders answer, not the codes.
Select k.name_long As country, Count(*) As cities, Sum(c.population) As people
From countries k, cities c
Where c.obj Within k.obj
Group By k.name_long
Order By cities Desc, country
Limit 10
