#include "Classes/VeyraScriptClass.h"

#include "Classes/VeyraConstants.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/WebKit/ScriptContext.h"

namespace veyra {

namespace {

std::shared_ptr<NSError> scriptError(JSContextRef context, JSValueRef exception, NSString message) {
    return std::make_shared<NSError>(NSURLErrorDomain, -1,
                                     NSDictionary::Map{{"exception", id(NSStringFromJSValue(exception, context))},
                                                       {"message", id(std::move(message))}});
}

// The exception of setting the property, or null.
JSValueRef setConstant(JSContextRef context, JSObjectRef object, const NSString& name, JSValueRef value) {
    JSStringRef key = ScriptContext::makeString(name);
    JSValueRef exception = nullptr;
    JSObjectSetProperty(context, object, key, value, kJSPropertyAttributeReadOnly, &exception);
    JSStringRelease(key);
    return exception;
}

} // namespace

bool JSClassCreateAndInsertObjectInContext(const NSString& className, JSClassRef* classRef, JSObjectRef* classObject,
                                           JSContextRef context, std::shared_ptr<NSError>* error) {
    const std::string name = className.utf8();
    JSClassDefinition definition = kJSClassDefinitionEmpty;
    definition.version = 1;
    definition.className = name.c_str();
    *classRef = JSClassCreate(&definition);
    *classObject = JSObjectMake(context, *classRef, nullptr);

    const auto fail = [&](JSValueRef exception, const char* message) {
        JSClassRelease(*classRef);
        *classRef = nullptr;
        *classObject = nullptr;
        if (error)
            *error = scriptError(context, exception, message);
        return false;
    };
    JSStringRef key = ScriptContext::makeString(className);
    JSObjectRef global = JSContextGetGlobalObject(context);
    JSValueRef exception = nullptr;
    const JSValueRef existing = JSObjectGetProperty(context, global, key, &exception);
    if (existing && !exception && JSValueIsObject(context, existing)) {
        JSStringRelease(key);
        return false;
    }
    if (exception) {
        JSStringRelease(key);
        return fail(exception, "Unable to get existing class object from global object.");
    }
    JSObjectSetProperty(context, global, key, *classObject, kJSPropertyAttributeNone, &exception);
    JSStringRelease(key);
    return exception ? fail(exception, "Unable to insert class object into global object.") : true;
}

bool JSObjectRefInsertNumberConstant(JSObjectRef object, const NSString& name, JSContextRef context,
                                     std::shared_ptr<NSError>* error, double value) {
    const JSValueRef exception = setConstant(context, object, name, JSValueMakeNumber(context, value));
    if (exception && error)
        *error = scriptError(context, exception,
                             NSStringWithFormat("Unable to set property named %@ with value %f", {name, value}));
    return !exception;
}

bool JSObjectRefInsertStringConstant(JSObjectRef object, const NSString& name, const NSString& value,
                                     JSContextRef context, std::shared_ptr<NSError>* error) {
    JSStringRef text = ScriptContext::makeString(value);
    const JSValueRef exception = setConstant(context, object, name, JSValueMakeString(context, text));
    JSStringRelease(text);
    if (exception && error)
        *error = scriptError(context, exception,
                             NSStringWithFormat("Unable to set property named %@ with value %@", {name, value}));
    return !exception;
}

NSString NSStringFromJSStringRef(JSStringRef string) {
    return ScriptContext::toString(string);
}

NSString NSStringFromJSValue(JSValueRef value, JSContextRef context) {
    JSStringRef string = JSValueToStringCopy(context, value, nullptr);
    if (!string)
        return NSString();
    const NSString text = NSStringFromJSStringRef(string);
    JSStringRelease(string);
    return text;
}

void installGeoMap(JSContextRef context, const char* caller) {
    JSClassRef classRef = nullptr;
    JSObjectRef geoMap = nullptr;
    std::shared_ptr<NSError> error;
    const bool installed = JSClassCreateAndInsertObjectInContext("GeoMap", &classRef, &geoMap, context, &error);
    if (error)
        NSLog("%s Unable to create the GeoMap class: %@", {caller, error});
    if (!installed) {
        if (classRef)
            JSClassRelease(classRef); // the page has an object of that name, and the class goes unused
        return;
    }
    static constexpr std::pair<const char*, int32_t> constants[] = {
        {"kVeyraTypeStandard", kVeyraTypeStandard},
        {"kVeyraTypeSatellite", kVeyraTypeSatellite},
        {"kVeyraTypeHybrid", kVeyraTypeHybrid},
        {"kVeyraUserLocationUnusableError", kVeyraUserLocationUnusableError},
        {"kVeyraUserLocationDeniedError", kVeyraUserLocationDeniedError},
        {"kVeyraAnnotationURIInvalid", kVeyraAnnotationURIInvalid},
    };
    for (const auto& [name, value] : constants)
        JSObjectRefInsertNumberConstant(geoMap, name, context, nullptr, value);
    JSClassRelease(classRef);
}

} // namespace veyra
