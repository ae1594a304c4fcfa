// The server's own classes for the outputs of a machine, made from the table of an output's keys.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "embedded_host/schema.h"

constexpr const char* kOutputClass = "DI_Output";
constexpr const char* kOutputMonitorClass = "DI_OutputMonitor";

/// The class of an output, and the association of a monitor (Antecedent) with its output (Dependent).
std::vector<TClassDeclaration> MakeOutputClasses();

/// The values of an instance of kOutputClass, by property name; null if a value is unknown. `output`: an object of
/// `outputs` in an answer.
nlohmann::json ReadOutput(const nlohmann::json& output, const std::string& systemName);
