// Answers the CIM operations that read (DSP0200): a request and the instances in, the XML of the answer out.
#pragma once

#include <string>

#include "command/cim_server/cim_model.h"
#include "command/cim_server/cim_request.h"
#include "command/cim_server/enumerations.h"

/// True if the answer depends on the instances; false if it is made from the schema or refuses the operation.
bool NeedsInstances(const TCimRequest& request);

struct TCimAnswer {
  std::string xml;
  int error;  // its number in DSP0200; 0: none
};

/// The answer, or a CIM error with its reason. `enumerations`: those that clients have opened. `host`: the server's
/// name for its clients, used in object paths.
TCimAnswer AnswerCim(const TCimRequest& request, const TCimModel& model, TEnumerations& enumerations,
                     const std::string& host);

/// An answer that says that the operation failed (CIM_ERR_FAILED).
TCimAnswer AnswerFailure(const TCimRequest& request, const std::string& reason);
