-- How many people live in each country.
-- map: --map-title 'People by country' --map-fill pop --map-classes quantiles:6 --map-label name_long
Select name_long, pop, obj From countries
