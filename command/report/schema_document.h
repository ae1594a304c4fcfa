// The classes served, documented from the schema table.
#pragma once

#include <string>

/// For people: each class with what it is, what it is made from, and its properties with type, "key" or unit,
/// and meaning.
std::string MakeSchemaText();

/// In the DMTF's Managed Object Format (DSP0004), with the declarations of the qualifiers that it uses, so that a
/// compiler takes it without any other file: what `displayinfo schema --format mof` prints.
std::string MakeSchemaMof();

/// A JSON Schema (2020-12) of the answer that `displayinfo --format json` writes.
std::string MakeJsonSchema();
