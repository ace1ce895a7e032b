-- One line for each continent out of three files: how many countries, for how many of them the unemployment is known
-- and its mean, and how many people live in cities of at least 100,000.
Select k.continent, Count(*) As countries, Count(i.unemployment) As known, RoundBy(Avg(i.unemployment), 2) As unemployment,
       Sum(t.people) As city_people
From countries k
     Left Join indicators i On i.name = k.name_long
     Left Join (Select country, Sum(population) As people From cities Group By country) t On t.country = k.iso_a2
Group By k.continent
Order By countries Desc, k.continent
