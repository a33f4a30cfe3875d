// The few questions the realtime push and ecosystem decoders ask of a JSON value, answered
// alike for a cJSON tree and a FlatJson table, so that one decoder serves both.
#ifndef QM_JSON_VIEW_H
#define QM_JSON_VIEW_H

#include <cjson/cJSON.h>

#include "mio_json.h"
#include "qm_flat_json.h"

namespace json_view {

inline const cJSON* member(const cJSON* object, const char* key) { return MIO_JSON_GetObjectItem(object, key); }
inline bool is_number(const cJSON* v) { return cJSON_IsNumber(v); }
inline bool is_string(const cJSON* v) { return cJSON_IsString(v); }
inline bool is_array(const cJSON* v) { return cJSON_IsArray(v); }
inline bool is_object(const cJSON* v) { return cJSON_IsObject(v); }
inline bool is_bool(const cJSON* v) { return cJSON_IsBool(v); }
inline bool is_true(const cJSON* v) { return cJSON_IsTrue(v); }
inline const cJSON* first(const cJSON* v) { return v ? v->child : nullptr; }
inline const cJSON* next(const cJSON* v) { return v->next; }
inline int int_of(const cJSON* v) { return v->valueint; }
inline double double_of(const cJSON* v) { return v->valuedouble; }
inline const char* text_of(const cJSON* v) { return cJSON_IsString(v) ? v->valuestring : nullptr; }
inline int size_of(const cJSON* v) { return cJSON_GetArraySize(v); }

using Flat = FlatJson::Item;
using Kind = FlatJson::Kind;
inline Flat member(Flat object, const char* key) { return object.member(key); }
inline bool is_number(Flat v) { return v.is(Kind::kNumber); }
inline bool is_string(Flat v) { return v.is(Kind::kString); }
inline bool is_array(Flat v) { return v.is(Kind::kArray); }
inline bool is_object(Flat v) { return v.is(Kind::kObject); }
inline bool is_bool(Flat v) { return v.is(Kind::kTrue) || v.is(Kind::kFalse); }
inline bool is_true(Flat v) { return v.is(Kind::kTrue); }
inline Flat first(Flat v) { return v.first(); }
inline Flat next(Flat v) { return v.next(); }
inline int int_of(Flat v) { return v.int_value(); }
inline double double_of(Flat v) { return v.double_value(); }
inline const char* text_of(Flat v) { return v.text(); }
inline int size_of(Flat v) { return v.size(); }

}  // namespace json_view

#endif
