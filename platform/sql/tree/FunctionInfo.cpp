#include "platform/sql/tree/FunctionInfo.h"

#include <algorithm>
#include <array>

namespace orvane::sql {

namespace {

constexpr auto scalar = FunctionInfo::Scalar;
constexpr auto aggregate = FunctionInfo::Aggregate;
constexpr auto both =
    static_cast<FunctionInfo::TypeMask>(int{FunctionInfo::Scalar} | int{FunctionInfo::Aggregate});
constexpr auto window = FunctionInfo::Window;

struct Entry {
    int code;
    const char* name;
    FunctionInfo::TypeMask types;
};

// The scalar functions in alphabetical order. The functions of other kinds have the numbers that hosts expect
// of their kind.
// clang-format off
constexpr Entry entries[] = {
    {1, "Abs", scalar}, {2, "ACos", scalar}, {3, "ACosh", scalar}, {4, "AddPoint", scalar},
    {5, "Area", scalar}, {6, "AsBinary", scalar}, {7, "Asc", scalar}, {8, "AsEWKB", scalar},
    {9, "AsEWKT", scalar}, {10, "AsFGF", scalar}, {11, "AsGeoJSON", scalar}, {12, "AsGml", scalar},
    {13, "ASin", scalar}, {14, "ASinh", scalar}, {15, "AsKml", scalar}, {16, "AsSvg", scalar},
    {17, "AsText", scalar}, {18, "AsTWKB", scalar}, {19, "AsWkt", scalar}, {20, "AsX3D", scalar},
    {21, "ATan", scalar}, {22, "ATan2", scalar}, {23, "ATanh", scalar}, {24, "ATM_AsText", scalar},
    {25, "ATM_Create", scalar}, {26, "ATM_CreateRotate", scalar}, {27, "ATM_CreateScale", scalar},
    {28, "ATM_CreateTranslate", scalar}, {29, "ATM_CreateXRoll", scalar}, {30, "ATM_CreateYRoll", scalar},
    {31, "ATM_CreateZRoll", scalar}, {32, "ATM_Determinant", scalar}, {33, "ATM_Invert", scalar},
    {34, "ATM_IsInvertible", scalar}, {35, "ATM_IsValid", scalar}, {36, "ATM_Multiply", scalar},
    {37, "ATM_Rotate", scalar}, {38, "ATM_Scale", scalar}, {39, "ATM_Transform", scalar},
    {40, "ATM_Translate", scalar}, {41, "ATM_XRoll", scalar}, {42, "ATM_YRoll", scalar},
    {43, "Avg", aggregate}, {44, "Count", aggregate}, {45, "Min", both}, {46, "Max", both},
    {47, "Sum", aggregate}, {49, "ATM_ZRoll", scalar}, {50, "Azimuth", scalar},
    {51, "BdMPolyFromText", scalar}, {52, "BdMPolyFromWKB", scalar}, {53, "BdPolyFromText", scalar},
    {54, "BdPolyFromWKB", scalar}, {55, "Boundary", scalar}, {58, "Buffer", scalar},
    {59, "BuildArea", scalar}, {60, "BuildCircleMbr", scalar}, {61, "BuildMbr", scalar},
    {62, "Capitalize", scalar}, {63, "CartesianArea", scalar}, {64, "CartesianObjectDistance", scalar},
    {65, "CartesianObjectLen", scalar}, {66, "CartesianPerimeter", scalar},
    {67, "CaseSensitiveCompare", scalar}, {68, "CaseSensitiveLocaleCompare", scalar},
    {69, "CastAutomagic", scalar}, {70, "CastToBlob", scalar}, {71, "CastToDouble", scalar},
    {72, "CastToGeometryCollection", scalar}, {73, "CastToInteger", scalar}, {74, "CastToLinestring", scalar},
    {75, "Total", aggregate}, {76, "Group_Concat", aggregate}, {77, "CastToMulti", scalar},
    {78, "CastToMultiLinestring", scalar}, {79, "CastToMultiPoint", scalar},
    {80, "CastToMultiPolygon", scalar}, {81, "CastToPoint", scalar}, {82, "CastToPolygon", scalar},
    {83, "CastToSingle", scalar}, {84, "CastToText", scalar}, {85, "CastToXY", scalar},
    {86, "CastToXYM", scalar}, {87, "Json_Group_Array", aggregate}, {88, "CastToXYZ", scalar},
    {89, "Row_Number", window}, {90, "CastToXYZM", scalar}, {91, "Ceil", scalar}, {92, "Ceiling", scalar},
    {93, "Centroid", scalar}, {94, "CentroidWithin", scalar}, {95, "Rank", window},
    {96, "Dense_Rank", window}, {97, "CentroidX", scalar}, {98, "Percent_Rank", window},
    {99, "CentroidY", scalar}, {100, "Char", scalar}, {101, "Circularity", scalar},
    {102, "Json_Group_Object", aggregate}, {103, "ClosestPoint", scalar}, {104, "Coalesce", scalar},
    {105, "CollectionExtract", scalar}, {106, "CompressGeometry", scalar}, {107, "Concat", scalar},
    {108, "ConcaveHull", scalar}, {109, "Contains", scalar}, {110, "ContainsCentroid", scalar},
    {111, "Cume_Dist", window}, {112, "NTile", window}, {113, "ContainsEntirely", scalar},
    {114, "ConvexHull", scalar}, {115, "CoordDimension", scalar}, {116, "Cos", scalar}, {117, "Cosh", scalar},
    {118, "Cot", scalar}, {119, "CoveredBy", scalar}, {120, "Covers", scalar}, {121, "Lag", window},
    {122, "Lead", window}, {123, "Crosses", scalar}, {124, "CurDate", scalar}, {125, "CurDateTime", scalar},
    {126, "First_Value", window}, {127, "Last_Value", window}, {128, "Current_Date", scalar},
    {129, "Current_Time", scalar}, {130, "Nth_Value", window}, {131, "Current_Timestamp", scalar},
    {132, "CurTime", scalar}, {133, "CurvosityIndex", scalar}, {134, "CvtFromCh", scalar},
    {135, "CvtFromCm", scalar}, {136, "CvtFromDm", scalar}, {137, "CvtFromFath", scalar},
    {138, "CvtFromFt", scalar}, {139, "CvtFromIn", scalar}, {140, "CvtFromKm", scalar},
    {141, "CvtFromKmi", scalar}, {142, "CvtFromLink", scalar}, {143, "CvtFromMi", scalar},
    {144, "CvtFromMm", scalar}, {145, "CvtFromUsFt", scalar}, {146, "CvtFromUsMi", scalar},
    {147, "CvtFromYd", scalar}, {148, "StdDev_Pop", aggregate}, {149, "CvtToCh", scalar},
    {150, "CvtToCm", scalar}, {151, "CvtToDm", scalar}, {152, "CvtToFath", scalar}, {153, "CvtToFt", scalar},
    {154, "CvtToIn", scalar}, {155, "CvtToKm", scalar}, {156, "CvtToKmi", scalar}, {157, "CvtToLink", scalar},
    {158, "CvtToMi", scalar}, {159, "CvtToMm", scalar}, {160, "CvtToUsFt", scalar},
    {161, "CvtToUsMi", scalar}, {162, "CvtToYd", scalar}, {163, "Date", scalar}, {164, "DateTime", scalar},
    {165, "Day", scalar}, {166, "DecodeURL", scalar}, {167, "Deformat", scalar}, {168, "Degrees", scalar},
    {169, "DelaunayTriangulation", scalar}, {170, "Difference", scalar}, {171, "Dimension", scalar},
    {172, "DirNameFromPath", scalar}, {173, "Disjoint", scalar}, {174, "DissolvePoints", scalar},
    {175, "DissolveSegments", scalar}, {176, "Distance", scalar}, {177, "Divide", scalar},
    {178, "DownhillHeight", scalar}, {179, "ElementaryGeometries", scalar}, {180, "EncodeURL", scalar},
    {181, "EndPoint", scalar}, {182, "EnsureClosedRings", scalar}, {183, "EntirelyWithin", scalar},
    {184, "Envelope", scalar}, {185, "Equals", scalar}, {186, "Exp", scalar}, {187, "ExteriorRing", scalar},
    {188, "ExtractMultiLinestring", scalar}, {189, "ExtractMultiPoint", scalar},
    {190, "ExtractMultiPolygon", scalar}, {191, "FileExtFromPath", scalar}, {192, "FileNameFromPath", scalar},
    {193, "Floor", scalar}, {194, "ForceAsNull", scalar}, {195, "Format", scalar},
    {196, "FormatDate", scalar}, {197, "FormatNumber", scalar}, {198, "FormatNumberByPattern", scalar},
    {199, "FormatTime", scalar}, {200, "FrechetDistance", scalar}, {201, "FromOrvGeo", scalar},
    {202, "FullFileNameFromPath", scalar}, {203, "GARSMbr", scalar}, {204, "GeodesicArcArea", scalar},
    {205, "GeodesicArcHeight", scalar}, {206, "GeodesicArcLength", scalar},
    {207, "GeodesicCentralAngle", scalar}, {208, "GeodesicChordLength", scalar},
    {209, "GeodesicLength", scalar}, {210, "GeoHash", scalar}, {211, "GeomCollFromText", scalar},
    {212, "GeomCollFromWKB", scalar}, {213, "GeometryAliasType", scalar},
    {214, "GeometryCollectionFromText", scalar}, {215, "GeometryCollectionFromWKB", scalar},
    {216, "GeometryFromText", scalar}, {217, "GeometryFromWKB", scalar}, {218, "GeometryN", scalar},
    {219, "GeometryType", scalar}, {220, "GeomFromEWKB", scalar}, {221, "StdDev_Samp", aggregate},
    {222, "GeomFromEWKT", scalar}, {223, "GeomFromFGF", scalar}, {224, "GeomFromGeoJSON", scalar},
    {225, "GeomFromGml", scalar}, {226, "GeomFromKml", scalar}, {227, "GeomFromText", scalar},
    {228, "GeomFromTWKB", scalar}, {229, "GeomFromWKB", scalar}, {230, "Geos_Version", scalar},
    {231, "GetDate", scalar}, {232, "GetTime", scalar}, {233, "GLength", scalar}, {234, "Glob", scalar},
    {235, "Collect", both}, {236, "GreatCircleLength", scalar}, {237, "HasGeos", scalar},
    {238, "HasProj", scalar}, {239, "HausdorffDistance", scalar}, {240, "Hex", scalar},
    {241, "HexagonalGrid", scalar}, {242, "Hour", scalar}, {243, "IfNull", scalar}, {244, "IIf", scalar},
    {245, "InStr", scalar}, {246, "InteriorRingN", scalar}, {247, "Intersection", scalar},
    {248, "Intersects", scalar}, {249, "Involution", scalar}, {250, "IsClosed", scalar},
    {251, "IsCompressedGeometryBlob", scalar}, {252, "IsDecimalNumber", scalar}, {253, "IsEmpty", scalar},
    {254, "IsGeometryBlob", scalar}, {255, "IsInteger", scalar}, {256, "IsNumber", scalar},
    {257, "IsRing", scalar}, {258, "IsSimple", scalar}, {259, "IsValid", scalar},
    {260, "IsValidDetail", scalar}, {261, "IsValidReason", scalar}, {262, "Json", scalar},
    {263, "Json_Array", scalar}, {264, "Json_Array_Length", scalar}, {265, "Json_Extract", scalar},
    {266, "Json_Insert", scalar}, {267, "ST_Collect", both}, {268, "Json_Object", scalar},
    {269, "Json_Patch", scalar}, {270, "Json_Quote", scalar}, {271, "Json_Remove", scalar},
    {272, "Json_Replace", scalar}, {273, "Json_Set", scalar}, {274, "Json_Type", scalar},
    {275, "Json_Valid", scalar}, {276, "JulianDay", scalar}, {277, "LatitudeFromDMS", scalar},
    {278, "LCase", scalar}, {279, "Left", scalar}, {280, "LeftTrim", scalar}, {281, "Len", scalar},
    {282, "Length", scalar}, {283, "Like", scalar}, {284, "Line_Interpolate_Equidistant_Points", scalar},
    {285, "Line_Interpolate_Point", scalar}, {286, "Line_Locate_Point", scalar},
    {287, "Line_Substring", scalar}, {288, "LineFromText", scalar}, {289, "LineFromWKB", scalar},
    {290, "LineMerge", scalar}, {291, "LinesCutAtNodes", scalar}, {292, "LinesFromRings", scalar},
    {293, "LinestringAvgSegmentLength", scalar}, {294, "LineStringFromText", scalar},
    {295, "LineStringFromWKB", scalar}, {296, "LinestringMaxSegmentLength", scalar},
    {297, "LinestringMinSegmentLength", scalar}, {298, "Ln", scalar}, {299, "LoCase", scalar},
    {300, "Log", scalar}, {301, "Log10", scalar}, {302, "Log2", scalar}, {303, "LongitudeFromDMS", scalar},
    {304, "LongLatToDMS", scalar}, {305, "Lower", scalar}, {306, "LTrim", scalar}, {307, "M", scalar},
    {308, "MakeArc", scalar}, {309, "MakeCircle", scalar}, {310, "MakeCircularSector", scalar},
    {311, "MakeCircularStripe", scalar}, {312, "MakeEllipse", scalar}, {313, "MakeEllipticArc", scalar},
    {314, "MakeEllipticSector", scalar}, {315, "MakePoint", scalar}, {316, "MakePointM", scalar},
    {317, "MakePointZ", scalar}, {318, "MakePointZM", scalar}, {319, "MakePolygon", scalar},
    {320, "MakeValid", scalar}, {321, "MakeValidDiscarded", scalar}, {322, "MakeValidGeo", scalar},
    {323, "MaxDistance", scalar}, {324, "Maximum", scalar}, {325, "MBRContains", scalar},
    {326, "MbrDisjoint", scalar}, {327, "MBREqual", scalar}, {328, "MbrIntersects", scalar},
    {329, "MbrMaxX", scalar}, {330, "MbrMaxY", scalar}, {331, "MbrMinX", scalar}, {332, "MbrMinY", scalar},
    {333, "MBROverlaps", scalar}, {334, "MbrTouches", scalar}, {335, "MbrWithin", scalar},
    {336, "MD5Checksum", scalar}, {337, "Mid", scalar}, {338, "Minimum", scalar}, {339, "Minute", scalar},
    {340, "MLineFromText", scalar}, {341, "MLineFromWKB", scalar}, {342, "Mod", scalar},
    {343, "Month", scalar}, {344, "MPointFromText", scalar}, {345, "MPointFromWKB", scalar},
    {346, "MPolyFromText", scalar}, {347, "MPolyFromWKB", scalar}, {348, "Var_Pop", aggregate},
    {349, "MultiLineStringFromText", scalar}, {350, "MultiLineStringFromWKB", scalar},
    {351, "MultiPointFromText", scalar}, {352, "MultiPointFromWKB", scalar},
    {353, "MultiPolygonFromText", scalar}, {354, "MultiPolygonFromWKB", scalar},
    {355, "NormalizeLonLat", scalar}, {356, "NullIf", scalar}, {357, "NumberToDate", scalar},
    {358, "NumGeometries", scalar}, {359, "NumInteriorRing", scalar}, {360, "NumInteriorRings", scalar},
    {361, "NumPoints", scalar}, {362, "ObjectArea", scalar}, {363, "ObjectLen", scalar},
    {364, "ObjectPerimeter", scalar}, {365, "OffsetCurve", scalar}, {366, "Overlaps", scalar},
    {367, "Perimeter", scalar}, {368, "Pi", scalar}, {369, "PointFromText", scalar},
    {370, "PointFromWKB", scalar}, {371, "PointN", scalar}, {372, "PointOnSurface", scalar},
    {373, "PolyFromText", scalar}, {374, "PolyFromWKB", scalar}, {375, "PolygonFromText", scalar},
    {376, "PolygonFromWKB", scalar}, {377, "Pow", scalar}, {378, "Power", scalar}, {379, "PrintF", scalar},
    {380, "PROJ_AsProjString", scalar}, {381, "PROJ_AsWKT", scalar}, {382, "PROJ_GuessSridFromWKT", scalar},
    {383, "Proj_Version", scalar}, {384, "Project", scalar}, {385, "PtDistWithin", scalar},
    {386, "Quote", scalar}, {387, "Quotient", scalar}, {388, "Radians", scalar}, {389, "Random", scalar},
    {390, "RandomBlob", scalar}, {391, "ReflectCoordinates", scalar}, {392, "ReflectCoords", scalar},
    {393, "Relate", scalar}, {394, "RemoveExtraSpaces", scalar}, {395, "RemovePoint", scalar},
    {396, "RemoveRepeatedPoints", scalar}, {397, "Repeat", scalar}, {398, "Replace", scalar},
    {399, "Resemblance", scalar}, {400, "RetrieveCS", scalar}, {401, "RetrieveTableCS", scalar},
    {402, "Right", scalar}, {403, "RightTrim", scalar}, {404, "RingsCutAtNodes", scalar},
    {405, "RotateCoordinates", scalar}, {406, "RotateCoords", scalar}, {407, "Round", scalar},
    {408, "RoundBy", scalar}, {409, "RoundTo", scalar}, {410, "RTrim", scalar},
    {411, "SanitizeGeometry", scalar}, {412, "ScaleCoordinates", scalar}, {413, "ScaleCoords", scalar},
    {414, "Second", scalar}, {415, "Segmentize", scalar}, {416, "SelfIntersections", scalar},
    {417, "SetEndPoint", scalar}, {418, "SetPoint", scalar}, {419, "SetSRID", scalar},
    {420, "SetStartPoint", scalar}, {421, "SharedPaths", scalar}, {422, "ShiftCoordinates", scalar},
    {423, "ShiftCoords", scalar}, {424, "ShortestLine", scalar}, {425, "Sign", scalar},
    {426, "Simplify", scalar}, {427, "SimplifyPreserveTopology", scalar}, {428, "Sin", scalar},
    {429, "SingleSidedBuffer", scalar}, {430, "Sinh", scalar}, {431, "Snap", scalar},
    {432, "SnapAndSplit", scalar}, {433, "SnapToGrid", scalar}, {434, "Soundex", scalar},
    {435, "Space", scalar}, {436, "SpatiaLite_Version", scalar}, {437, "SphericalArea", scalar},
    {438, "SphericalObjectDistance", scalar}, {439, "SphericalObjectLen", scalar},
    {440, "SphericalPerimeter", scalar}, {441, "Split", scalar}, {442, "SplitLeft", scalar},
    {443, "SplitRight", scalar}, {444, "SQLite_Version", scalar}, {445, "Sqrt", scalar},
    {446, "Var_Samp", aggregate}, {447, "SquareGrid", scalar}, {448, "SRID", scalar},
    {449, "SridFromAuthCRS", scalar}, {450, "SridGetAxis_1_Name", scalar},
    {451, "SridGetAxis_1_Orientation", scalar}, {452, "SridGetAxis_2_Name", scalar},
    {453, "SridGetAxis_2_Orientation", scalar}, {454, "SridGetDatum", scalar}, {455, "Extent", aggregate},
    {456, "SridGetEllipsoid", scalar}, {457, "SridGetPrimeMeridian", scalar},
    {458, "SridGetProjection", scalar}, {459, "SridGetSpheroid", scalar}, {460, "SridGetUnit", scalar},
    {461, "SridHasFlippedAxes", scalar}, {462, "SridIsGeographic", scalar}, {463, "SridIsProjected", scalar},
    {464, "ST_3DDistance", scalar}, {465, "ST_3dLength", scalar}, {466, "ST_3DMaxDistance", scalar},
    {467, "ST_Area", scalar}, {468, "ST_AsBinary", scalar}, {469, "ST_AsEncodedPolyline", scalar},
    {470, "ST_AsText", scalar}, {471, "ST_AsX3D", scalar}, {472, "ST_Azimuth", scalar},
    {473, "ST_BdMPolyFromText", scalar}, {474, "ST_BdMPolyFromWKB", scalar},
    {475, "ST_BdPolyFromText", scalar}, {476, "ST_BdPolyFromWKB", scalar}, {477, "ST_Boundary", scalar},
    {478, "ST_Buffer", scalar}, {479, "ST_BuildArea", scalar}, {480, "ST_Centroid", scalar},
    {481, "ST_ClosestPoint", scalar}, {482, "ST_CollectionExtract", scalar}, {483, "ST_ConcaveHull", scalar},
    {484, "ST_Polygonize", aggregate}, {485, "ST_Contains", scalar}, {486, "ST_ConvexHull", scalar},
    {487, "ST_CoveredBy", scalar}, {488, "ST_Covers", scalar}, {489, "ST_Crosses", scalar},
    {490, "ST_CurvosityIndex", scalar}, {491, "ST_Cutter", scalar}, {492, "ST_DelaunayTriangulation", scalar},
    {493, "ST_Difference", scalar}, {494, "ST_Dimension", scalar}, {495, "ST_Disjoint", scalar},
    {496, "ST_DissolvePoints", scalar}, {497, "WtAvg", aggregate}, {498, "ST_DissolveSegments", scalar},
    {499, "ST_Distance", scalar}, {500, "ST_DownhillHeight", scalar}, {501, "ST_DrapeLine", scalar},
    {502, "ST_DrapeLineExceptions", scalar}, {503, "ST_EndPoint", scalar}, {504, "ST_Envelope", scalar},
    {505, "ST_EnvelopesIntersects", scalar}, {506, "ST_EnvIntersects", scalar}, {507, "ST_Equals", scalar},
    {508, "ST_Expand", scalar}, {509, "ST_ExteriorRing", scalar}, {510, "ST_ForceLHR", scalar},
    {511, "ST_ForcePolygonCCW", scalar}, {512, "ST_ForcePolygonCW", scalar},
    {513, "ST_FrechetDistance", scalar}, {514, "ST_Generalize", scalar}, {515, "ST_GeoHash", scalar},
    {516, "ST_GeomCollFromText", scalar}, {517, "ST_GeomCollFromWKB", scalar},
    {518, "ST_GeometryCollectionFromText", scalar}, {519, "ST_GeometryCollectionFromWKB", scalar},
    {520, "ST_GeometryFromText", scalar}, {521, "ST_GeometryFromWKB", scalar}, {522, "ST_GeometryN", scalar},
    {523, "ST_GeometryType", scalar}, {524, "ST_GeomFromText", scalar}, {525, "ST_GeomFromWKB", scalar},
    {526, "ST_HausdorffDistance", scalar}, {527, "ST_HexagonalGrid", scalar},
    {528, "ST_InteriorRingN", scalar}, {529, "ST_InterpolatePoint", scalar}, {530, "ST_Intersection", scalar},
    {531, "ST_Intersects", scalar}, {532, "ST_Is3D", scalar}, {533, "ST_IsClosed", scalar},
    {534, "ST_IsEmpty", scalar}, {535, "ST_IsMeasured", scalar}, {536, "ST_IsPolygonCCW", scalar},
    {537, "ST_IsPolygonCW", scalar}, {538, "ST_IsRing", scalar}, {539, "ST_IsSimple", scalar},
    {540, "ST_IsValid", scalar}, {541, "ST_IsValidDetail", scalar}, {542, "ST_IsValidReason", scalar},
    {543, "ST_IsValidTrajectory", scalar}, {544, "ST_Length", scalar},
    {545, "ST_Line_Interpolate_Equidistant_Points", scalar}, {546, "ST_Line_Interpolate_Point", scalar},
    {547, "ST_Line_Locate_Point", scalar}, {548, "ST_Line_Substring", scalar}, {549, "GUnion", both},
    {550, "ST_LineFromEncodedPolyline", scalar}, {551, "ST_LineFromText", scalar},
    {552, "ST_LineFromWKB", scalar}, {553, "ST_LineMerge", scalar}, {554, "ST_LinesCutAtNodes", scalar},
    {555, "ST_LinesFromRings", scalar}, {556, "ST_LinestringAvgSegmentLength", scalar},
    {557, "ST_LineStringFromText", scalar}, {558, "ST_LineStringFromWKB", scalar},
    {559, "ST_LinestringMaxSegmentLength", scalar}, {560, "ST_LinestringMinSegmentLength", scalar},
    {561, "ST_Locate_Along_Measure", scalar}, {562, "ST_Locate_Between_Measures", scalar},
    {563, "ST_LocateAlong", scalar}, {564, "ST_LocateBetween", scalar}, {565, "ST_M", scalar},
    {566, "ST_MakePolygon", scalar}, {567, "ST_MakeValid", scalar}, {568, "ST_MakeValidDiscarded", scalar},
    {569, "ST_MaxDistance", scalar}, {570, "ST_MaxM", scalar}, {571, "ST_MaxX", scalar},
    {572, "ST_MaxY", scalar}, {573, "ST_MaxZ", scalar}, {574, "ST_MinM", scalar}, {575, "ST_MinX", scalar},
    {576, "ST_MinY", scalar}, {577, "ST_MinZ", scalar}, {578, "ST_MLineFromText", scalar},
    {579, "ST_MLineFromWKB", scalar}, {580, "ST_MPointFromText", scalar}, {581, "ST_MPointFromWKB", scalar},
    {582, "ST_MPolyFromText", scalar}, {583, "ST_MPolyFromWKB", scalar}, {584, "ST_Multi", scalar},
    {585, "ST_MultiLineStringFromText", scalar}, {586, "ST_MultiLineStringFromWKB", scalar},
    {587, "ST_MultiPointFromText", scalar}, {588, "ST_MultiPointFromWKB", scalar},
    {589, "ST_MultiPolygonFromText", scalar}, {590, "ST_MultiPolygonFromWKB", scalar},
    {591, "ST_NDims", scalar}, {592, "ST_Node", scalar}, {593, "ST_NPoints", scalar},
    {594, "ST_NRings", scalar}, {595, "ST_NumGeometries", scalar}, {596, "ST_NumInteriorRing", scalar},
    {597, "ST_NumPoints", scalar}, {598, "ST_OffsetCurve", scalar}, {599, "ST_Overlaps", scalar},
    {600, "ST_Perimeter", scalar}, {601, "ST_Point", scalar}, {602, "ST_PointFromText", scalar},
    {603, "ST_PointFromWKB", scalar}, {604, "ST_PointN", scalar}, {605, "ST_PointOnSurface", scalar},
    {606, "ST_PolyFromText", scalar}, {607, "ST_PolyFromWKB", scalar}, {608, "ST_PolygonFromText", scalar},
    {609, "ST_PolygonFromWKB", scalar}, {610, "ST_Project", scalar}, {611, "ST_Relate", scalar},
    {612, "ST_RelateMatch", scalar}, {613, "ST_RemovePoint", scalar}, {614, "ST_Reverse", scalar},
    {615, "ST_RingsCutAtNodes", scalar}, {616, "ST_Segmentize", scalar},
    {617, "ST_SelfIntersections", scalar}, {618, "ST_SetEndPoint", scalar}, {619, "ST_Union", both},
    {620, "MakeLine", both}, {621, "ST_SetPoint", scalar}, {622, "ST_SetStartPoint", scalar},
    {623, "ST_SharedPaths", scalar}, {624, "ST_Shift_Longitude", scalar}, {625, "ST_ShortestLine", scalar},
    {626, "ST_Simplify", scalar}, {627, "ST_SimplifyPreserveTopology", scalar},
    {628, "ST_SingleSidedBuffer", scalar}, {629, "ST_Snap", scalar}, {630, "ST_SnapAndSplit", scalar},
    {631, "ST_SnapToGrid", scalar}, {632, "ST_Split", scalar}, {633, "ST_SplitLeft", scalar},
    {634, "ST_SplitRight", scalar}, {635, "ST_SquareGrid", scalar}, {636, "ST_SRID", scalar},
    {637, "ST_StartPoint", scalar}, {638, "ST_Subdivide", scalar}, {639, "ST_SymDifference", scalar},
    {640, "ST_Touches", scalar}, {641, "ST_TrajectoryInterpolatePoint", scalar},
    {642, "ST_Transform", scalar}, {643, "ST_TransformXY", scalar}, {644, "ST_TransformXYZ", scalar},
    {645, "ST_Translate", scalar}, {646, "ST_TriangularGrid", scalar}, {647, "ST_UnaryUnion", scalar},
    {648, "ST_UpDownHeight", scalar}, {649, "ST_UphillHeight", scalar}, {650, "ST_VoronojDiagram", scalar},
    {651, "ST_Within", scalar}, {652, "WtAvgSafe", aggregate}, {653, "ST_WKBToSQL", scalar},
    {654, "ST_WKTToSQL", scalar}, {655, "ST_X", scalar}, {656, "ST_Y", scalar}, {657, "ST_Z", scalar},
    {658, "StartPoint", scalar}, {659, "Str", scalar}, {660, "StrFTime", scalar},
    {661, "StringToDate", scalar}, {662, "Substr", scalar}, {663, "Substring", scalar},
    {664, "SwapCoordinates", scalar}, {665, "SwapCoords", scalar}, {666, "SymDifference", scalar},
    {667, "Tan", scalar}, {668, "Tanh", scalar}, {669, "Time", scalar}, {670, "ToGARS", scalar},
    {671, "ToOrvGeo", scalar}, {672, "Touches", scalar}, {673, "Transform", scalar},
    {674, "TransformToOrvGeo", scalar}, {675, "TransformToSLGeo", scalar}, {676, "TransformXY", scalar},
    {677, "TransformXYZ", scalar}, {678, "TriangularGrid", scalar}, {679, "Trim", scalar},
    {680, "Trunc", scalar}, {681, "Truncate", scalar}, {682, "TypeOf", scalar}, {683, "UCase", scalar},
    {684, "UnaryUnion", scalar}, {685, "UncompressGeometry", scalar}, {686, "Unicode", scalar},
    {687, "UnixEpoch", scalar}, {688, "UpCase", scalar}, {689, "UpDownHeight", scalar},
    {690, "UphillHeight", scalar}, {691, "Upper", scalar}, {692, "Val", scalar},
    {693, "VoronojDiagram", scalar}, {694, "Weekday", scalar}, {695, "Within", scalar}, {696, "X", scalar},
    {697, "Xor", scalar}, {698, "Y", scalar}, {699, "Year", scalar}, {700, "Z", scalar}
};
// clang-format on

constexpr std::size_t functionCount = std::size(entries);

constexpr std::array<FunctionInfo, functionCount> makeInfos() {
    std::array<FunctionInfo, functionCount> infos{};
    std::transform(std::begin(entries), std::end(entries), infos.begin(), [](const Entry& entry) {
        return FunctionInfo{static_cast<FunctionName>(entry.code), entry.name, entry.types};
    });
    return infos;
}

constexpr std::array<FunctionInfo, functionCount> infos = makeInfos();

static_assert(std::is_sorted(infos.begin(), infos.end(), [](const FunctionInfo& a, const FunctionInfo& b) {
    return a.code <= b.code; // no code twice
}));

} // namespace

std::span<const FunctionInfo> functionInfos() {
    return infos;
}

const char* FunctionNameInfo::name(FunctionName code) {
    const auto found =
        std::lower_bound(infos.begin(), infos.end(), code,
                         [](const FunctionInfo& info, FunctionName key) { return info.code < key; });
    return found != infos.end() && found->code == code ? found->name : nullptr;
}

void FunctionSet::reserve(int limit) {
    codes_.resize(std::max(limit, codes_.size()));
}

void FunctionSet::fillByMask(FunctionInfo::TypeMasks mask, bool contained) {
    reserve(functionNameLimit);
    for (const FunctionInfo& info : infos) {
        if (mask & info.types) {
            codes_.setBit(static_cast<int>(info.code), contained);
        }
    }
}

bool FunctionSet::contains(FunctionName code) const {
    const int bit = static_cast<int>(code);
    return bit < codes_.size() && codes_.testBit(bit);
}

bool OperatorSet::contains(OperationCode code) const {
    const int bit = static_cast<int>(code);
    return bit >= 0 && bit < codes_.size() && codes_.testBit(bit);
}

} // namespace orvane::sql
