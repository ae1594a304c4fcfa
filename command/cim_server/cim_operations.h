// The CIM operations that read (DSP0200): a request and the instances in, the XML of the answer out.
#pragma once

#include <string>

#include "command/cim_server/cim_model.h"
#include "command/cim_server/cim_request.h"

/// True if the answer depends on the instances; false for an operation that is answered from the schema, or refused.
bool NeedsInstances(const TCimRequest& request);

/// The answer's XML: what was asked for, or a CIM error with its reason. `host`: what clients call this server, for
/// object paths.
std::string AnswerCim(const TCimRequest& request, const TCimModel& model, const std::string& host);

/// The XML of the answer that the operation failed (CIM_ERR_FAILED).
std::string AnswerFailure(const TCimRequest& request, const std::string& reason);
