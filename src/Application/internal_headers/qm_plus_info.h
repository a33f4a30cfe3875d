// The end-effector ecosystem records filled from a JSON object, for the realtime push and for
// the ecosystem queries alike. A member that is missing or of another type leaves its field as
// it was; arrays are cut to the record's sizes and texts to its fields.
#ifndef QM_PLUS_INFO_H
#define QM_PLUS_INFO_H

#include <cjson/cJSON.h>

#include "qm_define.h"
#include "qm_flat_json.h"

void plus_base_info_from(const cJSON* object, qm_plus_base_info_t& info);
void plus_base_info_from(FlatJson::Item object, qm_plus_base_info_t& info);

// How the 32-bit counters "tsa" and "tma" are taken: the push keeps the integer's low 32 bits,
// the query keeps only numbers within 0..4294967295 and leaves the other entries as they were.
enum class CounterRule { wrapped, in_range };
void plus_state_info_from(const cJSON* object, qm_plus_state_info_t& info, CounterRule counters);
void plus_state_info_from(FlatJson::Item object, qm_plus_state_info_t& info, CounterRule counters);

#endif
