-- Which OpenStreetMap features the guide's street map keeps, and in which layer: tilemaker calls
-- node_function and way_function for every feature of the extract.

node_keys = { "place", "addr:housenumber" }

-- Road classes by the zoom they appear at: the map stays readable, and low zooms stay small.
local roadClasses = {
  motorway = { "motorway", 8 }, motorway_link = { "motorway", 10 },
  trunk = { "trunk", 8 }, trunk_link = { "trunk", 10 },
  primary = { "primary", 9 }, primary_link = { "primary", 11 },
  secondary = { "secondary", 10 }, secondary_link = { "secondary", 12 },
  tertiary = { "tertiary", 11 }, tertiary_link = { "tertiary", 12 },
  residential = { "street", 13 }, unclassified = { "street", 13 }, living_street = { "street", 13 }, road = { "street", 13 },
  service = { "service", 14 },
  pedestrian = { "path", 14 }, footway = { "path", 14 }, path = { "path", 14 }, cycleway = { "path", 14 }, steps = { "path", 14 },
  track = { "path", 14 }
}

local placeZooms = { city = 8, town = 10, suburb = 12, village = 12, neighbourhood = 14, quarter = 13, hamlet = 14 }

local greenLanduse = { park = "park", garden = "park", playground = "park", pitch = "park", recreation_ground = "park",
  grass = "grass", meadow = "grass", forest = "wood", wood = "wood", cemetery = "cemetery",
  residential = "residential", commercial = "commercial", retail = "commercial", industrial = "industrial" }

-- Carries the feature's name, when it has one.
local function keepName(feature)
  local name = feature:Find("name")
  if name ~= "" then feature:Attribute("name", name) end
end

function node_function(node)
  local place = node:Find("place")
  local zoom = placeZooms[place]
  if zoom ~= nil and node:Find("name") ~= "" then
    node:Layer("place", false)
    node:Attribute("class", place)
    keepName(node)
    node:MinZoom(zoom)
  end
  local number = node:Find("addr:housenumber")
  if number ~= "" then
    node:Layer("housenumber", false)
    node:Attribute("number", number)
  end
end

function way_function(way)
  local highway = way:Find("highway")
  local road = roadClasses[highway]
  if road ~= nil and way:Find("area") ~= "yes" then
    way:Layer("road", false)
    way:Attribute("class", road[1])
    way:MinZoom(road[2])
    keepName(way)
    return
  end

  local railway = way:Find("railway")
  if railway == "rail" or railway == "light_rail" or railway == "tram" then
    way:Layer("railway", false)
    way:Attribute("class", railway)
    return
  end

  local waterway = way:Find("waterway")
  if waterway == "river" or waterway == "canal" or waterway == "stream" then
    way:Layer("water", false)
    way:Attribute("class", waterway)
    if waterway == "stream" then way:MinZoom(13) end
    keepName(way)
    return
  end

  if not way:IsClosed() then return end

  if way:Find("natural") == "water" or way:Find("waterway") == "riverbank" or way:Find("landuse") == "reservoir"
     or way:Find("landuse") == "basin" then
    way:Layer("water", true)
    way:Attribute("class", "water")
    return
  end

  local class = greenLanduse[way:Find("leisure")] or greenLanduse[way:Find("landuse")] or greenLanduse[way:Find("natural")]
  if class ~= nil then
    way:Layer("landuse", true)
    way:Attribute("class", class)
    if class == "park" then keepName(way) end
    return
  end

  if way:Find("building") ~= "" then
    way:Layer("building", true)
    local number = way:Find("addr:housenumber")
    if number ~= "" then way:Attribute("number", number) end
  end
end
