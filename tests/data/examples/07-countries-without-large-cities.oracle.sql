Select name_long As country, type From countries
Where iso_a2 In (Select iso_a2 From countries Except Select country From cities) Order By name_long
