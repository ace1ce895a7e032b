Select continent, place, name, population
From (Select k.continent, c.name, c.population,
             Row_Number() Over (Partition By k.continent Order By c.population Desc) As place
      From cities c Join countries k On k.iso_a2 = c.country) ranked
Where place <= 3 Order By continent, place
