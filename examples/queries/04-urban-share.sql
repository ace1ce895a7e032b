-- What part of the people lives in towns? A GeoPackage joined with a CSV file, Northern Europe only.
Select k.name_long As country, RoundBy(100 * i.urban_pop / k.pop, 1) As urban_percent
From countries k Join indicators i On i.iso_a2 = k.iso_a2
Where k.subregion = 'Northern Europe' And i.urban_pop Is Not Null And k.pop Is Not Null
Order By urban_percent Desc, country
