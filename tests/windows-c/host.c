/* A host without a C runtime: opens a collection whose channel it answers itself, and prints the record of slot 0. Ends
 * with 0 when everything was as it should be, otherwise with the number of the step that was not. */
#include "battery/norv_battery.h"

__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* bytes, unsigned long size, unsigned long* written,
                                              void* overlapped);
__declspec(dllimport) void __stdcall ExitProcess(unsigned int code);

static void Print(const char* text) {
  unsigned long written = 0;
  unsigned long size = 0;
  while (text[size] != '\0') {
    ++size;
  }
  WriteFile(GetStdHandle((unsigned long)-11), text, size, &written, NULL);
}

static void PrintNumber(const char* before, unsigned int number) {
  char digits[12];
  char* digit = digits + sizeof digits;
  *--digit = '\0';
  do {
    *--digit = (char)('0' + number % 10);
    number /= 10;
  } while (number != 0);
  Print(before);
  Print(digit);
  Print("\n");
}

static void PutWord(uint8_t* block, unsigned int offset, unsigned int word) {
  block[offset] = (uint8_t)(word & 0xFF);
  block[offset + 1] = (uint8_t)(word >> 8);
}

static void PutText(uint8_t* block, unsigned int offset, const char* text) {
  for (; *text != '\0'; ++text) {
    block[offset++] = (uint8_t)*text;
  }
}

/* Counts its calls in the context. */
static int32_t Channel(void* context, uint32_t first, uint32_t second, uint32_t third, const uint8_t* input,
                       uint32_t inputSize, uint8_t* output, uint32_t* returnCode) {
  ++*(unsigned int*)context;
  if (first != 1 || second != 7 || third != 1 || inputSize != NORV_BATTERY_BLOCK_SIZE || input[0] != 0) {
    *returnCode = 6; /* no battery in this slot */
    return 0;
  }
  for (unsigned int index = 0; index < NORV_BATTERY_BLOCK_SIZE; ++index) {
    output[index] = 0;
  }
  PutWord(output, 0x00, 4545); /* design capacity */
  PutWord(output, 0x02, 4398); /* full charge capacity */
  PutWord(output, 0x12, 0x00A0);
  PutText(output, 0x1C, "04217 2022-09-14");
  PutText(output, 0x2C, "313-54-33-A");
  PutText(output, 0x3E, "6FKRA0B2C4D5E6");
  PutText(output, 0x4F, "NV3C52");
  *returnCode = 0;
  return 0;
}

static void Log(void* context, int32_t level, const char* function, const char* text) {
  *(unsigned int*)context |= level == NORV_BATTERY_LOG_INFO && function[0] == 'n' && text[0] != '\0' ? 1 : 0;
}

static int32_t Visit(void* context, const norv_battery_description* description, const norv_battery_value* value,
                     const char* text) {
  ++*(unsigned int*)context;
  if (value->size != sizeof *value || description->size != sizeof *description) {
    return 1;
  }
  Print(description->name);
  Print(": ");
  Print(text);
  Print(" ");
  Print(description->unit);
  Print("\n");
  return 0;
}

static unsigned int Run(void) {
  unsigned int calls = 0;
  unsigned int lines = 0;
  unsigned int fields = 0;
  norv_battery_options options = {sizeof options, 0, Channel, &calls, Log, &lines, NORV_BATTERY_LOG_INFO};
  norv_battery_collection* collection = NULL;
  norv_battery_record* record = NULL;
  if (norv_battery_interface_version() < NORV_BATTERY_INTERFACE_VERSION) {
    return 1;
  }
  if (norv_battery_open(&options, &collection) != NORV_BATTERY_OK || calls != 2) {
    return 2;
  }
  if (norv_battery_get_record(collection, 1, &record) != NORV_BATTERY_NO_BATTERY ||
      norv_battery_get_record(collection, 0, &record) != NORV_BATTERY_OK) {
    return 3;
  }
  Print("slot 0\n");
  if (norv_battery_for_each_field(record, Visit, &fields) != NORV_BATTERY_OK) {
    return 4;
  }
  PrintNumber("fields: ", fields);
  PrintNumber("log: ", lines);
  if (norv_battery_close(collection) != NORV_BATTERY_OK) {
    return 5;
  }
  Print("done\n");
  return 0;
}

void Start(void);

void Start(void) {
  ExitProcess(Run());
}
