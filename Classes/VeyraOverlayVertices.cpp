#include "Classes/VeyraOverlayVertices.h"

#include "Classes/VeyraConstants.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/WebKit/ScriptNumbers.h"

#include <utility>
#include <vector>

namespace veyra {

std::optional<MKVertexList> VerticesFromWebScriptObject(const id& object, const char* caller) {
    if (!VeyraValidateWebScriptObject(object, nullptr, caller, {kOstrelOverlayCoordinates}))
        return std::nullopt;
    const id coordinates = object.valueForKey(kOstrelOverlayCoordinates);
    const id length = coordinates.valueForKey("length");
    const auto array = coordinates.as<WebScriptObject>();
    const uint64_t count = array && length.isNumber() ? length.unsignedIntegerValue() : 0;
    if (count % 2 != 0) {
        WebScriptObject::throwException(
            NSStringWithFormat("%s, number of values in coordinates array must be even", {caller}));
        return std::nullopt;
    }
    MKVertexList vertices;
    std::vector<CLLocationCoordinate2D> run;
    std::optional<double> latitude; // of a vertex whose longitude comes with the next run
    if (count > 0)
        ScriptNumbers(*array).read(count, [&](std::span<const double> numbers) {
            run.clear();
            for (const double number : numbers) {
                if (latitude)
                    run.push_back(CLLocationCoordinate2DMake(*std::exchange(latitude, std::nullopt), number));
                else
                    latitude = number;
            }
            vertices.append(run);
        });
    vertices.complete();
    return vertices;
}

} // namespace veyra
