-- Cities of more than a million people in Europe by their size, on top of the countries, the large ones with their names and
-- their people in millions.
-- map: --map-title 'Cities of more than a million people' --map-fill population --map-classes natural:4
-- map: --map-label "Case When population > 2500000 Then name & ', ' & Round(population / 1000000.0, 0.1) & ' M' Else name End"
-- map: --map-background countries --map-graticule
Select c.name, c.population, c.obj
From cities c Join countries k On k.iso_a2 = c.country
Where k.continent = 'Europe' And c.population > 1000000 And c.feature <> 'PPLX' And X(c.obj) < 70
Order By c.population Desc
