/* The C header by itself, with everything it offers used as C uses it. */
#include "battery/norv_battery.h"

extern int32_t visit(void* context, const norv_battery_description* description, const norv_battery_value* value,
                     const char* text);
extern int use_header(void);

int32_t visit(void* context, const norv_battery_description* description, const norv_battery_value* value,
              const char* text) {
  size_t* const sum = (size_t*)context;
  *sum += (size_t)description->width + value->textSize + (text[0] != '\0' ? 1 : 0);
  return 0;
}

int use_header(void) {
  norv_battery_options options = {sizeof options, NORV_BATTERY_READ_CELL_SWELL, NULL, NULL, NULL, NULL, 0};
  norv_battery_collection* collection = NULL;
  norv_battery_record* record = NULL;
  norv_battery_error error = {sizeof error, NORV_BATTERY_NOTHING_FAILED, 0};
  size_t sum = 0;
  bool whole = norv_battery_interface_version() >= NORV_BATTERY_INTERFACE_VERSION &&
               norv_battery_open(&options, &collection) == NORV_BATTERY_OK &&
               norv_battery_collection_error(collection, &error) == NORV_BATTERY_OK &&
               norv_battery_get_record(collection, 0, &record) == NORV_BATTERY_OK &&
               norv_battery_for_each_field(record, visit, &sum) == NORV_BATTERY_OK;
  norv_battery_close(collection);
  return whole && sum != 0 ? 0 : 1;
}
