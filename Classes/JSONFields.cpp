#include "Classes/JSONFields.h"

#include "Platform/Foundation/NSJSONSerialization.h"

namespace veyra {

void setFieldsFromJSON(NSObject& object, const NSString& json) {
    const id parsed = JSONObjectWithData(json.stringByReplacingUnit(u'\'', u'"').utf8());
    const auto dictionary = parsed.as<NSDictionary>();
    for (const NSString& key : object.attributeKeys()) {
        const float value = dictionary ? dictionary->objectForKey(key).floatValue() : 0;
        object.setValueForKey(id(static_cast<double>(value)), key);
    }
}

} // namespace veyra
