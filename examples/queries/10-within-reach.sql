-- The large cities within 300 kilometres of Berlin, with their distances along the ellipsoid.
Select other.name, other.country, RoundBy(SphericalObjectDistance(berlin.obj, other.obj, 'km'), 1) As kilometres
From cities berlin, cities other
Where berlin.name = 'Berlin' And berlin.country = 'DE' And other.population >= 500000 And other.name <> berlin.name
      And SphericalObjectDistance(berlin.obj, other.obj, 'km') <= 300
Order By kilometres
