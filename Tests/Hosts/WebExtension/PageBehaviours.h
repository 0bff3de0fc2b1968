// Tests that run inside a page: each `behaviour('name', …)` of a page in Tests/Pages is a test of that name.
#pragma once

namespace veyra::test {

void registerPageBehaviours();

} // namespace veyra::test
