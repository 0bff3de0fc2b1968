#include "Classes/VeyraOverlayPathOptions.h"

#include "Classes/UIColor+VeyraExtras.h"
#include "Classes/VeyraConstants.h"

#include <new>

namespace veyra {

namespace {

// Lengths in a dash pattern that are kept: a false, huge length must not take all memory.
constexpr uint64_t longestPattern = uint64_t{1} << 20;

double numberForKey(WebScriptObject& object, const NSString& key, float absent) {
    const id value = object.valueForKey(key);
    return value.isNil() ? absent : value.floatValue();
}

std::shared_ptr<UIColor> strokeColorOf(WebScriptObject& object) {
    const id color = object.valueForKey(kOstrelOverlayStrokeColor);
    const double opacity = numberForKey(object, kOstrelOverlayStrokeOpacity, 1);
    return color.isNil() ? UIColor::colorWithWhiteAlpha(0, opacity) : _veyra_colorWithHexStringAlpha(color, opacity);
}

std::shared_ptr<UIColor> fillColorOf(WebScriptObject& object) {
    const id color = object.valueForKey(kOstrelOverlayFillColor);
    const double opacity = numberForKey(object, kOstrelOverlayFillOpacity, 1);
    return color.isNil() ? nullptr : _veyra_colorWithHexStringAlpha(color, opacity);
}

CGLineJoin lineJoinOf(WebScriptObject& object) {
    const id join = object.valueForKey(kOstrelOverlayLineJoin);
    if (join.isEqualToString("miter"))
        return kCGLineJoinMiter;
    return join.isEqualToString("bevel") ? kCGLineJoinBevel : kCGLineJoinRound;
}

CGLineCap lineCapOf(WebScriptObject& object) {
    const id cap = object.valueForKey(kOstrelOverlayLineCap);
    if (cap.isEqualToString("butt"))
        return kCGLineCapButt;
    return cap.isEqualToString("square") ? kCGLineCapSquare : kCGLineCapRound;
}

std::optional<NSArray> lineDashPatternOf(WebScriptObject& object) {
    const id pattern = object.valueForKey(kOstrelOverlayLineDashPattern);
    if (pattern.isNil())
        return std::nullopt;
    NSArray lengths;
    const id length = pattern.valueForKey("length");
    const auto array = pattern.as<WebScriptObject>();
    if (!array || !length.isNumber())
        return lengths;
    const uint64_t count = length.unsignedIntegerValue();
    for (uint64_t index = 0; index < count && array->scriptObject(); ++index) {
        if (index >= longestPattern)
            throw std::bad_alloc();
        lengths.push_back(array->webScriptValueAtIndex(static_cast<unsigned>(index)));
    }
    return lengths;
}

} // namespace

Class VeyraOverlayPathOptions::classObject() {
    static Class cls = new ClassObject("VeyraOverlayPathOptions", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<VeyraOverlayPathOptions> PathOptionsFromWebScriptObject(WebScriptObject& object) {
    auto options = std::make_shared<VeyraOverlayPathOptions>();
    options->setStrokeColor(strokeColorOf(object));
    options->setFillColor(fillColorOf(object));
    options->setLineWidth(numberForKey(object, kOstrelOverlayLineWidth, 0));
    options->setLineJoin(lineJoinOf(object));
    options->setLineCap(lineCapOf(object));
    options->setMiterLimit(numberForKey(object, kOstrelOverlayMiterLimit, 10));
    options->setLineDashPhase(numberForKey(object, kOstrelOverlayLineDashPhase, 0));
    options->setLineDashPattern(lineDashPatternOf(object));
    return options;
}

void VeyraUpdateOverlayViewWithPathOptions(MKOverlayPathView& view, const VeyraOverlayPathOptions& options) {
    view.setStrokeColor(options.strokeColor());
    view.setFillColor(options.fillColor());
    view.setLineWidth(options.lineWidth());
    view.setLineJoin(options.lineJoin());
    view.setLineCap(options.lineCap());
    view.setMiterLimit(options.miterLimit());
    view.setLineDashPhase(options.lineDashPhase());
    view.setLineDashPattern(options.lineDashPattern());
}

} // namespace veyra
