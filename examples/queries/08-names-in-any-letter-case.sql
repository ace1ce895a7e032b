-- Names are compared as people read them: letter case does not matter, in any alphabet.
-- Cities named after a saint, by country.
Select country, Count(*) As cities, Max(population) As largest
From cities
Where name Like 'SANTA %' Or name Like 'SÃO %' Or name Like 'saint-%'
Group By country
Order By cities Desc, country
