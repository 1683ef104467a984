// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>
#include <vector>

/** A text for a state block, of a shape that could cost more to read than its size. */
struct DocumentShape
{
    const char* name;
    std::string (*text)();
};

/** The bytes of each: as many as a document may have. */
constexpr std::size_t shapeSize = 1 << 20;

/** The shape that the others are compared with: one long value without anything in it. */
inline constexpr auto plainShape = "a plain value";

/** Documents and what is none. */
const std::vector<DocumentShape>& documentShapes();
