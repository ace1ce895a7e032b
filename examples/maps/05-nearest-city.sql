-- The large cities of South America, and a line from each to the nearest other one, by its length in kilometres.
-- map: --map-title 'From each city to the nearest other one, km' --map-fill km --map-classes natural:4 --map-background countries
Select a.name, b.name As nearest, Distance(a.obj, b.obj, 'km') As km, MakeLine(a.obj, b.obj) As obj
From cities a Join cities b On b.geonameid = (Select c.geonameid From cities c
                                              Where c.population > 500000 And c.geonameid <> a.geonameid
                                              Order By Distance(c.obj, a.obj) Limit 1)
Where a.population > 500000 And a.country In (Select iso_a2 From countries Where continent = 'South America')
