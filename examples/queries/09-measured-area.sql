-- The areas in the attribute table against those of the geometries, measured on the ellipsoid:
-- do they agree to the tenth of a percent for the largest countries?
Select name_long As country, Round(Area(obj, 'sq km') / 1000, 1) As measured_thousands, Round(area_km2 / 1000, 1) As stored_thousands,
       Case When Abs(Area(obj, 'sq km') / area_km2 - 1) < 0.001 Then 'yes' Else 'no' End As agree
From countries
Where area_km2 > 7000000
Order By measured_thousands Desc
