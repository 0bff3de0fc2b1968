// Compares what was drawn with an expected picture in Tests/Images.
#pragma once

#include <gtest/gtest.h>

#include <string>

typedef struct _cairo_surface cairo_surface_t;

namespace veyra {

/// Succeeds when at most 0.00015 of the pixels look different from Tests/Images/NAME.png (a difference in YIQ above a
/// tenth of the largest). Otherwise the message names a file with what was drawn. With VEYRA_UPDATE_PICTURES=1 in the
/// environment the expected picture is written instead: look at it before it is committed.
testing::AssertionResult looksLike(const std::string& name, cairo_surface_t* drawn);

} // namespace veyra
