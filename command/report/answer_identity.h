// Whose answer it is, as people read it.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// The system's name as printable text; words for a system that has none.
std::string ShowSystemName(const TAnswerIdentity& identity);

/// When the machine was collected from, as far as that is known, and the version: "Collected 2026-11-21 21:30:00 UTC,
/// shown by displayinfo 1.4.0".
std::string DescribeCollection(const TAnswerIdentity& identity);
