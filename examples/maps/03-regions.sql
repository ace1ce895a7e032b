-- Countries dissolved into the subregions of Africa.
-- map: --map-title 'Subregions of Africa' --map-fill subregion --map-label subregion
Select subregion, GUnion(obj) As obj From countries Where continent = 'Africa' Group By subregion
