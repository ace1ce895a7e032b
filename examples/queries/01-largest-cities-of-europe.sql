-- The ten largest cities of Europe, with their countries: a shapefile joined with a GeoPackage on the ISO code.
Select c.name, k.name_long As country, c.population
From cities c Join countries k On k.iso_a2 = c.country
Where k.continent = 'Europe'
Order By c.population Desc
Limit 10
