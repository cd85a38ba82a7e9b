// The parameters that tools in both computer-use files take.
#pragma once

#include "protocol/Json.h"

namespace orvo {

json stateIdParameter();  // a computer_state_id from computer_inspect
json detailParameter();   // summary or full, for what inspect returns

}  // namespace orvo
