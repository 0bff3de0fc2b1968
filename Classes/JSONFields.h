// Fills a value object from the JSON-like text that its `description` writes.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

/// Sets each attribute of `object`, in order, from the entry of the same name, in single precision. Single quotes count
/// as double quotes. Text whose top is no JSON object, and absent entries, give 0; an entry that converts to no number
/// throws NSException.
void setFieldsFromJSON(NSObject& object, const NSString& json);

} // namespace veyra
