#include <orvane/engine/functions/GeometryShaping.h>
