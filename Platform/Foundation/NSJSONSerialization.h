// Reads JSON text into values. Any thread.
#pragma once

#include "Platform/Foundation/NSDictionary.h"

namespace veyra {

/// What JSON's null is read as: an object that converts to nothing.
class NSNull final : public NSObject {
public:
    VEYRA_CLASS()
};

/// The value of the text: NSDictionary for an object, NSArray, string, number, boolean or NSNull. Text that is no JSON
/// gives nil, and so does a text nested more than 512 levels deep; a bare value at the top counts as no JSON.
id JSONObjectWithData(std::string_view utf8);

} // namespace veyra
