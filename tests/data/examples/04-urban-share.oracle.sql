Select k.name_long As country, Round(100.0 * Cast(i.urban_pop As Real) / k.pop, 1) As urban_percent
From countries k Join indicators i On i.iso_a2 = k.iso_a2
Where k.subregion = 'Northern Europe' And i.urban_pop <> 'NA' And k.pop Is Not Null Order By urban_percent Desc, country
