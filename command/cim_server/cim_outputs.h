// The outputs of a machine as CIM clients see them: classes of the server's own, made from the table of an output's
// keys.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "embedded_host/schema.h"

constexpr const char* kOutputClass = "DI_Output";
constexpr const char* kOutputMonitorClass = "DI_OutputMonitor";

/// An output, and the association of a monitor (Antecedent) with the output that it stands for (Dependent).
std::vector<TClassDeclaration> MakeOutputClasses();

/// The values of an instance of kOutputClass, by the names of its properties; null for what is not known. `output`: an
/// object of `outputs` in an answer.
nlohmann::json ReadOutput(const nlohmann::json& output, const std::string& systemName);
