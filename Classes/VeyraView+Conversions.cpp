// Conversions between places and points, from the geometry that the map reported last. Nothing guards against a view or
// a visible rectangle of size zero: what the divisions give is what the script gets.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraPointSO.h"
#include "Classes/VeyraRectSO.h"
#include "Classes/VeyraRegionSO.h"
#include "Classes/VeyraView.h"
#include "Classes/WebScriptObject+VeyraExtras.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

namespace veyra {

namespace {

constexpr size_t maximumFields = 4;

template <class T>
using Fields = std::array<double, sizeof(T) / sizeof(double)>;

/// The arithmetic of a conversion between structures of doubles whose members are the attributes, in their order.
template <class From, class To, To (VeyraView::*Convert)(const From&) const>
void compute(const NSObject& self, const double* values, double* fields) {
    static_assert(sizeof(From) <= maximumFields * sizeof(double) && sizeof(To) <= maximumFields * sizeof(double));
    Fields<From> from;
    std::copy_n(values, from.size(), from.begin());
    const To to = (static_cast<const VeyraView&>(self).*Convert)(std::bit_cast<From>(from));
    std::ranges::copy(std::bit_cast<Fields<To>>(to), fields);
}

/// Not inlined: g++ 12 loses the narrowing of a pair of numbers when it vectorises the arithmetic around it.
[[gnu::noinline]] double inSinglePrecision(double number) {
    return static_cast<double>(static_cast<float>(number));
}

} // namespace

const std::vector<WebNumericMethod>& VeyraView::numericMethods() {
    static const auto* methods = new std::vector<WebNumericMethod>{
        {"regionThatFits:",
         VeyraRegionSO::classObject(),
         VeyraRegionSO::classObject(),
         {kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta, kOstrelRegionLatitude, kOstrelRegionLongitude},
         compute<MKCoordinateRegion, MKCoordinateRegion, &VeyraView::fittingRegion>},
        {"convertCoordinateToPoint:",
         VeyraLocationCoordinateSO::classObject(),
         VeyraPointSO::classObject(),
         {kOstrelCoordinateLatitude, kOstrelCoordinateLongitude},
         compute<CLLocationCoordinate2D, CGPoint, &VeyraView::pointForCoordinate>},
        {"convertPointToCoordinate:",
         VeyraPointSO::classObject(),
         VeyraLocationCoordinateSO::classObject(),
         {kOstrelPointX, kOstrelPointY},
         compute<CGPoint, CLLocationCoordinate2D, &VeyraView::coordinateForPoint>},
        {"convertRegionToRect:",
         VeyraRegionSO::classObject(),
         VeyraRectSO::classObject(),
         {kOstrelRegionLatitude, kOstrelRegionLongitude, kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta},
         compute<MKCoordinateRegion, CGRect, &VeyraView::rectForRegion>},
        {"convertRectToRegion:",
         VeyraRectSO::classObject(),
         VeyraRegionSO::classObject(),
         {kOstrelRectX, kOstrelRectY, kOstrelRectWidth, kOstrelRectHeight},
         compute<CGRect, MKCoordinateRegion, &VeyraView::regionForRect>},
    };
    return *methods;
}

namespace {

/// The numeric methods in their order.
enum Conversion { RegionThatFits, CoordinateToPoint, PointToCoordinate, RegionToRect, RectToRegion };

/// What the check and the reading of an argument need.
struct Argument {
    Class cls;
    id caller;
    std::vector<NSString> keys;
    std::vector<std::pair<NSString, size_t>> reads; // with the attribute's place
};

std::vector<Argument> makeArguments() {
    std::vector<Argument> arguments;
    for (const WebNumericMethod& method : VeyraView::numericMethods()) {
        Argument made{method.argument,
                      id(*VeyraView::webScriptNameForSelector(method.selector)),
                      method.argument->scripting().makeValueObject()->attributeKeys(),
                      {}};
        for (const NSString& key : method.reads) {
            const auto place = std::find(made.keys.begin(), made.keys.end(), key) - made.keys.begin();
            made.reads.emplace_back(key, static_cast<size_t>(place));
        }
        arguments.push_back(std::move(made));
    }
    return arguments;
}

const Argument& argumentOf(Conversion conversion) {
    static const auto& arguments = *new std::vector<Argument>(makeArguments());
    return arguments[conversion];
}

/// The argument of a conversion; nothing, and a script exception, for one that is refused.
template <class T>
std::optional<T> read(Conversion conversion, const id& argument) {
    const Argument& expected = argumentOf(conversion);
    if (!VeyraValidateWebScriptObject(argument, expected.cls, expected.caller, expected.keys))
        return std::nullopt;
    Fields<T> values;
    for (const auto& [key, place] : expected.reads)
        values[place] = geometryValueForKey(*argument.object(), key);
    return std::bit_cast<T>(values);
}

} // namespace

id VeyraView::regionThatFits(const id& region) {
    const auto wanted = read<MKCoordinateRegion>(RegionThatFits, region);
    return wanted ? id(VeyraRegionSO::withRegion(fittingRegion(*wanted))) : id();
}

id VeyraView::convertCoordinateToPoint(const id& coordinate) {
    const auto place = read<CLLocationCoordinate2D>(CoordinateToPoint, coordinate);
    return place ? id(VeyraPointSO::withPoint(pointForCoordinate(*place))) : id();
}

id VeyraView::convertPointToCoordinate(const id& point) {
    const auto place = read<CGPoint>(PointToCoordinate, point);
    return place ? id(VeyraLocationCoordinateSO::withCoordinate(coordinateForPoint(*place))) : id();
}

id VeyraView::convertRegionToRect(const id& region) {
    const auto area = read<MKCoordinateRegion>(RegionToRect, region);
    return area ? id(VeyraRectSO::withRect(rectForRegion(*area))) : id();
}

id VeyraView::convertRectToRegion(const id& rect) {
    const auto area = read<CGRect>(RectToRegion, rect);
    return area ? id(VeyraRegionSO::withRegion(regionForRect(*area))) : id();
}

MKCoordinateRegion VeyraView::fittingRegion(const MKCoordinateRegion& region) const {
    const NSLockGuard guard(_lock);
    return MKMapView::regionThatFitsMapTypeViewSizeRegion(static_cast<MKMapType>(_mapType), _boundsSize, region);
}

CGPoint VeyraView::pointForCoordinate(const CLLocationCoordinate2D& coordinate) const {
    const MKMapPoint p = MKMapPointForCoordinate(coordinate);
    const NSLockGuard guard(_lock);
    return {_boundsSize.width * (p.x - _visibleMapRect.origin.x) / _visibleMapRect.size.width,
            _boundsSize.height * (p.y - _visibleMapRect.origin.y) / _visibleMapRect.size.height};
}

// Points are taken in single precision.
CLLocationCoordinate2D VeyraView::coordinateForPoint(const CGPoint& point) const {
    const double x = inSinglePrecision(point.x), y = inSinglePrecision(point.y);
    MKMapPoint p;
    {
        const NSLockGuard guard(_lock);
        p.x = _visibleMapRect.origin.x + x / _boundsSize.width * _visibleMapRect.size.width;
        p.y = _visibleMapRect.origin.y + y / _boundsSize.height * _visibleMapRect.size.height;
    }
    return MKCoordinateForMapPoint(p);
}

CGRect VeyraView::rectForRegion(const MKCoordinateRegion& region) const {
    CLLocationCoordinate2D northWest, southEast;
    MKCoordinatesForRegion(region, &northWest, &southEast);
    const MKMapPoint p1 = MKMapPointForCoordinate(northWest), p2 = MKMapPointForCoordinate(southEast);
    double x1, y1, x2, y2;
    {
        const NSLockGuard guard(_lock);
        const MKMapRect& visible = _visibleMapRect;
        x1 = _boundsSize.width * (p1.x - visible.origin.x) / visible.size.width;
        y1 = _boundsSize.height * (p1.y - visible.origin.y) / visible.size.height;
        x2 = _boundsSize.width * (p2.x - visible.origin.x) / visible.size.width;
        y2 = _boundsSize.height * (p2.y - visible.origin.y) / visible.size.height;
    }
    // Pages rely on a height of 0 (NaN for a southern edge that is not finite).
    return {{x1, y1}, {x2 - x1, y2 - y2}};
}

MKCoordinateRegion VeyraView::regionForRect(const CGRect& rect) const {
    const auto& [x, y] = rect.origin;
    const auto& [width, height] = rect.size;
    MKMapRect area;
    {
        const NSLockGuard guard(_lock);
        const MKMapRect& visible = _visibleMapRect;
        const double x1 = visible.origin.x + x / _boundsSize.width * visible.size.width;
        const double y1 = visible.origin.y + y / _boundsSize.height * visible.size.height;
        const double x2 = visible.origin.x + visible.size.width * ((x + width) / _boundsSize.width);
        const double y2 = visible.origin.y + visible.size.height * ((y + height) / _boundsSize.height);
        area = {{x1, y1}, {x2 - x1, y2 - y1}};
    }
    return MKCoordinateRegionForMapRect(area);
}

} // namespace veyra
