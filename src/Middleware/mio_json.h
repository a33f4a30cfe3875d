// Null-safe facade over cJSON, and an owner type so trees never travel bare.
#ifndef MIO_JSON_H
#define MIO_JSON_H

#include <cjson/cJSON.h>

#include <memory>

struct JsonDeleter {
    void operator()(cJSON* tree) const noexcept { cJSON_Delete(tree); }
};
using JsonPtr = std::unique_ptr<cJSON, JsonDeleter>;

// Text printed by cJSON, released with cJSON_free.
struct JsonTextDeleter {
    void operator()(char* text) const noexcept { cJSON_free(text); }
};
using JsonText = std::unique_ptr<char, JsonTextDeleter>;

cJSON* MIO_JSON_Parse(const char* text);
void MIO_JSON_Delete(cJSON* tree);
char* MIO_JSON_Print(const cJSON* tree);
char* MIO_JSON_PrintUnformatted(const cJSON* tree);

cJSON* MIO_JSON_CreateObject();
cJSON* MIO_JSON_CreateArray();
cJSON* MIO_JSON_CreateNumber(double value);
cJSON* MIO_JSON_CreateTrue();
cJSON* MIO_JSON_CreateFalse();
cJSON* MIO_JSON_CreateString(const char* text);
void MIO_JSON_AddItemToObject(cJSON* object, const char* key, cJSON* item);
void MIO_JSON_AddItemToArray(cJSON* array, cJSON* item);

cJSON* MIO_JSON_GetObjectItem(const cJSON* object, const char* key);
cJSON* MIO_JSON_GetArrayItem(const cJSON* array, int index);
int MIO_JSON_GetArraySize(const cJSON* array);
int MIO_JSON_GetTypeFormItem(const cJSON* item);

// -2 null argument, -1 missing key, -3 not a number, else the integer.
int MIO_JSON_GetObjectItemInt(const cJSON* object, const char* key);
// The text, or null when missing or not a string.
const char* MIO_JSON_GetObjectItemStr(const cJSON* object, const char* key);
// 1 true, 0 false, -1 missing or not a boolean.
int MIO_JSON_GetObjectItemBool(const cJSON* object, const char* key);
// -1 for a null or non-array, an index out of range or a non-number, else the integer.
int MIO_JSON_GetArrayItemInt(const cJSON* array, int index);

inline JsonPtr json_parse(const char* text) { return JsonPtr(MIO_JSON_Parse(text)); }

#endif
