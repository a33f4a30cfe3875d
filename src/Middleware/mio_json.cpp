#include "mio_json.h"

cJSON* MIO_JSON_Parse(const char* text) { return text ? cJSON_Parse(text) : nullptr; }

void MIO_JSON_Delete(cJSON* tree) {
    if (tree) cJSON_Delete(tree);
}

char* MIO_JSON_Print(const cJSON* tree) { return tree ? cJSON_Print(tree) : nullptr; }

char* MIO_JSON_PrintUnformatted(const cJSON* tree) {
    return tree ? cJSON_PrintUnformatted(tree) : nullptr;
}

cJSON* MIO_JSON_CreateObject() { return cJSON_CreateObject(); }
cJSON* MIO_JSON_CreateArray() { return cJSON_CreateArray(); }
cJSON* MIO_JSON_CreateNumber(double value) { return cJSON_CreateNumber(value); }
cJSON* MIO_JSON_CreateTrue() { return cJSON_CreateTrue(); }
cJSON* MIO_JSON_CreateFalse() { return cJSON_CreateFalse(); }

cJSON* MIO_JSON_CreateString(const char* text) {
    return text ? cJSON_CreateString(text) : nullptr;
}

void MIO_JSON_AddItemToObject(cJSON* object, const char* key, cJSON* item) {
    if (object && key && item) cJSON_AddItemToObject(object, key, item);
}

void MIO_JSON_AddItemToArray(cJSON* array, cJSON* item) {
    if (array && item) cJSON_AddItemToArray(array, item);
}

cJSON* MIO_JSON_GetObjectItem(const cJSON* object, const char* key) {
    return (object && key) ? cJSON_GetObjectItem(object, key) : nullptr;
}

cJSON* MIO_JSON_GetArrayItem(const cJSON* array, int index) {
    return array ? cJSON_GetArrayItem(array, index) : nullptr;
}

int MIO_JSON_GetArraySize(const cJSON* array) { return array ? cJSON_GetArraySize(array) : 0; }

int MIO_JSON_GetTypeFormItem(const cJSON* item) { return item ? item->type : 0; }

int MIO_JSON_GetObjectItemInt(const cJSON* object, const char* key) {
    if (!object || !key) return -2;
    const cJSON* item = cJSON_GetObjectItem(object, key);
    if (!item) return -1;
    if (!cJSON_IsNumber(item)) return -3;
    return item->valueint;
}

const char* MIO_JSON_GetObjectItemStr(const cJSON* object, const char* key) {
    const cJSON* item = MIO_JSON_GetObjectItem(object, key);
    return cJSON_IsString(item) ? item->valuestring : nullptr;
}

int MIO_JSON_GetObjectItemBool(const cJSON* object, const char* key) {
    const cJSON* item = MIO_JSON_GetObjectItem(object, key);
    if (!cJSON_IsBool(item)) return -1;
    return cJSON_IsTrue(item) ? 1 : 0;
}

int MIO_JSON_GetArrayItemInt(const cJSON* array, int index) {
    if (!cJSON_IsArray(array)) return -1;
    if (index < 0 || index >= cJSON_GetArraySize(array)) return -1;
    const cJSON* item = cJSON_GetArrayItem(array, index);
    if (!cJSON_IsNumber(item)) return -1;
    return item->valueint;
}
