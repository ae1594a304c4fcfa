// Documents the classes, and the command's JSON, from the schema table and the table of an output's keys.
#pragma once

#include <string>

/// For people: what each class is, what it is made from, and its properties with type, "key" or unit, and meaning.
std::string MakeSchemaText();

/// In the DMTF's Managed Object Format (DSP0004), with declarations of the qualifiers that it uses, so that a compiler
/// needs no other file. `displayinfo schema --format mof` prints it.
std::string MakeSchemaMof();

/// A JSON Schema (2020-12) of everything that the command writes as JSON.
std::string MakeJsonSchema();
