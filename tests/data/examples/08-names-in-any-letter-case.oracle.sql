Select country, Count(*) As cities, Max(population) As largest From cities
Where name Like 'Santa %' Or name Like 'São %' Or name Like 'Saint-%'
Group By country Order By cities Desc, country
