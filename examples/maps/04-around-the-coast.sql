-- What is within 200 kilometres of New Zealand and Fiji: the one on this side of the antimeridian, the other on both.
-- map: --map-title 'Within 200 and 500 km of Fiji and New Zealand' --map-fill distance --map-background countries --map-graticule
Select '500 km' As distance, Buffer(obj, 500, 'km') As obj From countries Where name_long In ('Fiji', 'New Zealand')
Union All
Select '200 km', Buffer(obj, 200, 'km') From countries Where name_long In ('Fiji', 'New Zealand')
