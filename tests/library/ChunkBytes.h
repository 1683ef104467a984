// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/StateBlock.h"

/** A chunk around a settings document with these attributes, as they stand in XML. */
inline std::string withAttributes (const std::string& attributes)
{
    return state_block::blockWith (attributes);
}
