/* Marks what liblrmi exports. */
#pragma once

#define REALMODE_API __attribute__((visibility("default")))
