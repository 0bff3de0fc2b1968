#include "Platform/Foundation/NSJSONSerialization.h"

#include <nlohmann/json.hpp>

namespace veyra {
namespace {

constexpr size_t maximumDepth = 512;

/// Builds values as the parser meets them; every member answers whether the parser is to go on.
class ValueBuilder : public nlohmann::json_sax<nlohmann::json> {
public:
    const id& result() const { return _result; }

    bool null() override {
        static const auto& shared = *new std::shared_ptr<NSNull>(std::make_shared<NSNull>());
        return add(shared);
    }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) override { return add(static_cast<double>(value)); }
    bool number_float(number_float_t value, const string_t&) override { return add(value); }
    bool string(string_t& value) override { return add(NSString(std::string_view(value))); }
    bool binary(binary_t&) override { return false; }
    bool key(string_t& value) override {
        _open.back().key = NSString(std::string_view(value));
        return true;
    }
    bool start_object(size_t) override { return open(true); }
    bool start_array(size_t) override { return open(false); }
    bool end_object() override {
        id object = std::make_shared<NSDictionary>(std::move(_open.back().entries));
        _open.pop_back();
        return add(std::move(object));
    }
    bool end_array() override {
        id array = std::move(_open.back().elements);
        _open.pop_back();
        return add(std::move(array));
    }
    bool parse_error(size_t, const std::string&, const nlohmann::json::exception&) override { return false; }

private:
    /// An object or array whose end has not come yet.
    struct Container {
        bool isObject;
        NSString key;
        NSDictionary::Map entries;
        NSArray elements;
    };

    bool open(bool isObject) {
        if (_open.size() == maximumDepth)
            return false;
        _open.push_back({isObject, {}, {}, {}});
        return true;
    }
    bool add(id value) {
        if (_open.empty()) {
            _result = std::move(value);
            return true;
        }
        Container& container = _open.back();
        if (container.isObject)
            container.entries.insert_or_assign(container.key, std::move(value));
        else
            container.elements.push_back(std::move(value));
        return true;
    }

    std::vector<Container> _open;
    id _result;
};

} // namespace

Class NSNull::classObject() {
    static const Class cls = new ClassObject("NSNull", NSObject::classObject(), {});
    return cls;
}

id JSONObjectWithData(std::string_view utf8) {
    ValueBuilder builder;
    if (!nlohmann::json::sax_parse(utf8.begin(), utf8.end(), &builder))
        return id();
    const id& result = builder.result();
    return result.isArray() || result.as<NSDictionary>() ? result : id();
}

} // namespace veyra
