// The CIM operations that read (DSP0200): a request and the instances in, the XML of the answer out.
#pragma once

#include <string>

#include "command/cim_server/cim_model.h"
#include "command/cim_server/cim_request.h"
#include "command/cim_server/enumerations.h"

/// True if the answer depends on the instances; false for an operation that is answered from the schema, or refused.
bool NeedsInstances(const TCimRequest& request);

struct TCimAnswer {
  std::string xml;
  int error;  // the number that DSP0200 gives it; 0: none
};

/// What was asked for, or a CIM error with its reason. `enumerations`: those that clients have opened. `host`: what
/// clients call this server, for object paths.
TCimAnswer AnswerCim(const TCimRequest& request, const TCimModel& model, TEnumerations& enumerations,
                     const std::string& host);

/// The answer that the operation failed (CIM_ERR_FAILED).
TCimAnswer AnswerFailure(const TCimRequest& request, const std::string& reason);
