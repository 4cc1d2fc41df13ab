/* The C interface of norv-battery-info, for hosts of any compiler and any language.
 *
 * It stands beside the C++ classes, in the same shared library. A host needs this header and the library, nothing else.
 *
 * Statuses.  Every function but norv_battery_interface_version() and norv_battery_field_count() returns one of enum
 * norv_battery_status_code. NORV_BATTERY_OK is 0. With any other status what the function would have written is
 * unspecified unless it says otherwise, and a handle that it would have handed out is NULL. Nothing is ever thrown.
 *
 * Texts.  All of them are UTF-8. The firmware's own texts and the system's messages have no stated encoding: each of
 * their bytes stands as the character of its number, U+0000 to U+00FF. A function that gives a text takes a buffer, its
 * size in bytes and, as `needed`, a place for the size that the text takes with its closing NUL; `needed` may be NULL.
 * With a buffer of NULL and a size of 0 it tells the size only. A buffer that is too small gives
 * NORV_BATTERY_BUFFER_TOO_SMALL, `needed`, and an empty text where there is room for one.
 *
 * Structures.  The host writes sizeof the structure into the member `size` before it passes one, so that structures may
 * grow. The sizes of all versions up to this one are known; a structure of an earlier one lacks the members that came
 * later. A size that this library does not know, 0 or one of a later version, gives NORV_BATTERY_INVALID_SIZE.
 *
 * Threads.  One thread at a time uses a handle, and a collection and its records count as one handle. Different handles
 * may be used in parallel. What takes no handle may be called from any thread at any time. A handle that another
 * function is using gives NORV_BATTERY_IN_USE, and nothing has happened to it; nothing can tell that a handle is closed
 * already.
 *
 * Callbacks.  They are called only during the function that they were passed to, or for a channel and a log during the
 * functions that take their collection, on the thread that called it. They may not throw, not leave by longjmp() or by
 * ending their thread, and not use the handle on whose behalf they are called, which gives NORV_BATTERY_IN_USE.
 *
 * The numbers in this file never change their meaning; later versions add to them. Calls follow the C convention of the
 * system. */
#ifndef NORV_BATTERY_H
#define NORV_BATTERY_H

/* NOLINTBEGIN(modernize-deprecated-headers,modernize-use-using,modernize-redundant-void-arg): C compilers read this */
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* Hosts leave it undefined; functions need no import mark. */
#ifndef NORV_BATTERY_FUNCTION
#define NORV_BATTERY_FUNCTION
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* --- what this header and the library are ------------------------------------------------------------------------ */

#define NORV_BATTERY_INTERFACE_VERSION 1

/* The version of the library's interface. A host works with the version that it was compiled for and every later one.
 */
NORV_BATTERY_FUNCTION int32_t norv_battery_interface_version(void);

#define NORV_BATTERY_SLOT_COUNT 2
#define NORV_BATTERY_BLOCK_SIZE 128

/* --- statuses ---------------------------------------------------------------------------------------------------- */

typedef int32_t norv_battery_status;

enum norv_battery_status_code {
  NORV_BATTERY_OK = 0,
  NORV_BATTERY_INVALID_ARGUMENT = 1, /* NULL where something is needed, or a number out of its range */
  NORV_BATTERY_INVALID_SIZE = 2,     /* a structure or block of a size that this library does not know */
  NORV_BATTERY_INVALID_SLOT = 3,     /* not 0 or 1 */
  NORV_BATTERY_UNKNOWN_FIELD = 4,    /* a field that this library does not know, or not in that place */
  NORV_BATTERY_NO_BATTERY = 5,       /* the slot holds none, or it could not be read: see the collection's error */
  NORV_BATTERY_NO_BYTES = 6,         /* the field is not read from a block, or that block is not there */
  NORV_BATTERY_NO_VERDICT = 7,       /* the battery test gave none: see the errors of collection and test */
  NORV_BATTERY_BUFFER_TOO_SMALL = 8,
  NORV_BATTERY_STOPPED = 9,   /* a visitor asked for it */
  NORV_BATTERY_BORROWED = 10, /* a record that belongs to a collection goes with the collection only */
  NORV_BATTERY_OUT_OF_MEMORY = 11,
  NORV_BATTERY_INTERNAL_ERROR = 12, /* something was thrown that nothing should throw */
  NORV_BATTERY_IN_USE = 13          /* another thread uses the handle, or the function that runs this callback does */
};

/* What `status` means, in a few words. A number that is no status gives NORV_BATTERY_INVALID_ARGUMENT. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_status_text(norv_battery_status status, char* buffer,
                                                                   size_t bufferSize, size_t* needed);

/* --- collections and records ------------------------------------------------------------------------------------- */

typedef struct norv_battery_collection norv_battery_collection; /* both slots of a machine, read once */
typedef struct norv_battery_record norv_battery_record;         /* one battery */

/* A BIOS channel of the host's. Sends the command (first, second, third) with `inputSize` bytes of `input` and waits
 * for the answer. Returns the status of the channel in HRESULT form: 0 when the BIOS answered. Then it writes the
 * BIOS's return code (0: success) to `returnCode` and, on success, the answered block to the 128 bytes at `output`. It
 * keeps none of the pointers. A channel that returns 0 and writes no return code has answered without success. */
typedef int32_t (*norv_battery_channel)(void* context, uint32_t first, uint32_t second, uint32_t third,
                                        const uint8_t* input, uint32_t inputSize, uint8_t* output,
                                        uint32_t* returnCode);

/* Log levels. The library logs at these three. */
enum norv_battery_log_level {
  NORV_BATTERY_LOG_NONE = 0,
  NORV_BATTERY_LOG_ERROR = 2,
  NORV_BATTERY_LOG_INFO = 4,
  NORV_BATTERY_LOG_VERBOSE = 6
};

/* Receives a line of the log. `function` is the qualified name of the operation that logged it. Both texts are valid
 * during the call only. A logger that a C++ host hands to the library for the whole process gets the same lines,
 * independent of this. */
typedef void (*norv_battery_log)(void* context, int32_t level, const char* function, const char* text);

enum norv_battery_option {
  NORV_BATTERY_READ_CELL_SWELL = 1, /* read the cell swell protection data of each battery, too */
  NORV_BATTERY_RUN_TEST = 2         /* run the battery test as well, as norv_battery_run_test() does */
};

typedef struct norv_battery_options {
  uint32_t size;                /* sizeof(norv_battery_options) */
  uint32_t flags;               /* of enum norv_battery_option, added up */
  norv_battery_channel channel; /* NULL: the machine's own */
  void* channelContext;         /* passed to the channel as it is */
  norv_battery_log log;         /* NULL: no log */
  void* logContext;             /* passed to the log as it is */
  int32_t logLevel;             /* lines up to this level: 0 to 6 */
} norv_battery_options;

/* Reads both slots. Blocks while the BIOS, WMI and, if asked for, the test program do their work. A slot that cannot be
 * read is no failure of this function: norv_battery_get_record() and norv_battery_collection_error() tell. `options`
 * may be NULL, which stands for zeros. The host closes the collection. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_open(const norv_battery_options* options,
                                                            norv_battery_collection** collection);

/* Releases the collection with its records. NULL is fine; one in use gives NORV_BATTERY_IN_USE and stays. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_close(norv_battery_collection* collection);

/* The record of slot 0 or 1. It belongs to the collection and is valid until that is closed; the same one each time. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_get_record(norv_battery_collection* collection, uint32_t slot,
                                                                  norv_battery_record** record);

/* Decodes a block of 128 bytes that was read earlier or elsewhere, without asking this machine for anything but the
 * time. `cellSwell` is the battery's cell swell protection block, 128 bytes, or NULL with a size of 0. The blocks are
 * copied. The host releases the record. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_decode(const uint8_t* block, size_t blockSize,
                                                              const uint8_t* cellSwell, size_t cellSwellSize,
                                                              norv_battery_record** record);

/* Releases a decoded record. NULL is fine; a collection's record gives NORV_BATTERY_BORROWED and stays, and so does one
 * in use, which gives NORV_BATTERY_IN_USE. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_release(norv_battery_record* record);

/* Runs the battery test and waits for its end, without a time limit. NORV_BATTERY_OK: there is a verdict, and the
 * record of slot 0, if there is one, has it. NORV_BATTERY_NO_VERDICT: there is none. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_run_test(norv_battery_collection* collection);

/* --- errors ------------------------------------------------------------------------------------------------------ */

enum norv_battery_category {
  NORV_BATTERY_NOTHING_FAILED = 0,
  NORV_BATTERY_UNKNOWN_EXCEPTION = 1,
  NORV_BATTERY_STANDARD_EXCEPTION = 2, /* an exception of the C++ standard library */
  NORV_BATTERY_SYSTEM_MESSAGE = 3,     /* a status of the operating system, with the system's own message */
  NORV_BATTERY_WRONG_VALUE = 5         /* a value that is wrong, or a return code of the BIOS */
};

typedef struct norv_battery_error {
  uint32_t size;    /* sizeof(norv_battery_error) */
  int32_t category; /* of enum norv_battery_category; 0 when nothing failed, and then the code is 0, too */
  int64_t code;     /* a return code, a system code or a status, as the category says */
} norv_battery_error;

enum norv_battery_error_part {
  NORV_BATTERY_ERROR_MESSAGE = 0,
  NORV_BATTERY_ERROR_TYPE = 1,    /* of the value that carried the code, or of the exception */
  NORV_BATTERY_ERROR_FUNCTION = 2 /* the qualified name of the operation that failed, or empty */
};

/* The last failure of a read or of the test. A second slot without a battery is no failure. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_collection_error(const norv_battery_collection* collection,
                                                                        norv_battery_error* error);
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_collection_error_text(const norv_battery_collection* collection,
                                                                             int32_t part, char* buffer,
                                                                             size_t bufferSize, size_t* needed);

/* The last failure of the battery test itself. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_test_error(const norv_battery_collection* collection,
                                                                  norv_battery_error* error);
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_test_error_text(const norv_battery_collection* collection,
                                                                       int32_t part, char* buffer, size_t bufferSize,
                                                                       size_t* needed);

/* --- fields ------------------------------------------------------------------------------------------------------ */

/* Everything that a record can answer. */
enum norv_battery_field {
  NORV_BATTERY_MANUFACTURER = 1,
  NORV_BATTERY_DEVICE_NAME = 2,
  NORV_BATTERY_SERIAL_NUMBER = 3,
  NORV_BATTERY_CT_NUMBER = 4,

  NORV_BATTERY_DESIGN_CAPACITY = 5,
  NORV_BATTERY_FULL_CHARGE_CAPACITY = 6,
  NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE = 7, /* of the design capacity, cut to three decimals */
  NORV_BATTERY_REMAINING_CAPACITY = 8,
  NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE = 9, /* of the full charge capacity, cut to three decimals */
  NORV_BATTERY_MAX_ERROR = 10,
  NORV_BATTERY_CYCLE_COUNT = 11,
  NORV_BATTERY_DESIGN_VOLTAGE = 12,
  NORV_BATTERY_VOLTAGE = 13,
  NORV_BATTERY_CURRENT = 14, /* the firmware's word, 0 to 65535: that of a discharging battery is a two's complement */
  NORV_BATTERY_TEMPERATURE = 15,
  NORV_BATTERY_CHARGE_RATE = 16,    /* the operating system's, in its driver's unit; a decoded record has none */
  NORV_BATTERY_DISCHARGE_RATE = 17, /* the same */

  NORV_BATTERY_CELL_VOLTAGE_1 = 18,
  NORV_BATTERY_CELL_VOLTAGE_2 = 19,
  NORV_BATTERY_CELL_VOLTAGE_3 = 20,
  NORV_BATTERY_CELL_VOLTAGE_4 = 21,

  NORV_BATTERY_STATUS_WORD = 22,
  NORV_BATTERY_STATUS_ERROR_CODE = 23, /* a text; unknown for a reserved code */
  NORV_BATTERY_FULLY_DISCHARGED = 24,
  NORV_BATTERY_FULLY_CHARGED = 25,
  NORV_BATTERY_DISCHARGING = 26,
  NORV_BATTERY_INITIALIZED = 27,
  NORV_BATTERY_REMAINING_TIME_ALARM = 28,
  NORV_BATTERY_REMAINING_CAPACITY_ALARM = 29,
  NORV_BATTERY_RESERVED_BIT_10 = 30,
  NORV_BATTERY_TERMINATE_DISCHARGE_ALARM = 31,
  NORV_BATTERY_OVER_TEMPERATURE_ALARM = 32,
  NORV_BATTERY_RESERVED_BIT_13 = 33,
  NORV_BATTERY_TERMINATE_CHARGE_ALARM = 34,
  NORV_BATTERY_OVER_CHARGED_ALARM = 35,

  NORV_BATTERY_MANUFACTURING_DATE = 36, /* "2021-05-06T00:00:00+00:00" */
  NORV_BATTERY_WARRANTY_TYPE = 37,      /* "6_MONTHS", "1_YEAR", "2_YEARS", "3_YEARS" or "UNKNOWN" */
  NORV_BATTERY_WARRANTY_DATE = 38,      /* the manufacturing date moved forward by the warranty type */
  NORV_BATTERY_AGE = 39, /* whole days since the date at the end of the serial number; invalid without such a date */

  NORV_BATTERY_PACK_SUPPLIER = 40,
  NORV_BATTERY_CELL_SUPPLIER = 41,
  NORV_BATTERY_CALIBRATION_TYPE = 42,
  NORV_BATTERY_OVER_CURRENT_PROTECTION = 43, /* in the unit of the design capacity */
  NORV_BATTERY_DESIGN_CYCLE_COUNT = 44,      /* "300", "600", "1000" or "UNKNOWN" */
  NORV_BATTERY_CT_ASSEMBLY = 45,
  NORV_BATTERY_CT_REVISION = 46,
  NORV_BATTERY_CT_SUPPLIER = 47,
  NORV_BATTERY_CT_MANUFACTURING_WEEK = 48,

  NORV_BATTERY_ADAPTIVE_BATTERY_OPTIMIZER = 49, /* of the BIOS; slot 0 only */
  NORV_BATTERY_BATTERY_CARE = 50,               /* the same */

  NORV_BATTERY_TIME_CHARGE = 51,
  NORV_BATTERY_TIME_DISCHARGE = 52,
  NORV_BATTERY_TIME_RELAX = 53,
  NORV_BATTERY_TIME_SLEEP = 54,
  NORV_BATTERY_TIME_FULL_CHARGE = 55,
  NORV_BATTERY_TIME_RSOC = 56,
  NORV_BATTERY_LEVEL_A_TIME = 57,
  NORV_BATTERY_LEVEL_B_TIME = 58,
  NORV_BATTERY_LEVEL_A_RUNNING_TIME = 59,
  NORV_BATTERY_LEVEL_B_RUNNING_TIME = 60,
  NORV_BATTERY_LEVEL_A_TEMPERATURE_1_TIME = 61,
  NORV_BATTERY_LEVEL_B_TEMPERATURE_1_TIME = 62,
  NORV_BATTERY_LEVEL_A_TEMPERATURE_2_TIME = 63,
  NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME = 64,

  NORV_BATTERY_TEST_RESULT = 65,  /* -1 without a verdict */
  NORV_BATTERY_TEST_LABEL = 66,   /* of the result, "NOT_DEFINED" for one without */
  NORV_BATTERY_TEST_VERSION = 67, /* the product version of the test program */

  NORV_BATTERY_VALID = 68 /* a flag: manufacturer, serial number, device name and CT number are a real battery's */
};

enum norv_battery_kind {
  NORV_BATTERY_NUMBER = 1,
  NORV_BATTERY_TEXT = 2,
  NORV_BATTERY_FLAG = 3, /* 0 or 1 */
  NORV_BATTERY_REAL = 4
};

/* How far a value is to be trusted. In every state the value itself is what the C++ accessor answers. */
enum norv_battery_state {
  NORV_BATTERY_VALUE = 0,
  NORV_BATTERY_ABSENT = 1,  /* there is none: an empty text, no cell swell protection data, no battery test */
  NORV_BATTERY_UNKNOWN = 2, /* the firmware gave a code without a meaning */
  NORV_BATTERY_INVALID = 3, /* no such thing can be: a date with a month of 15, a wrong size, a divisor of zero */
  NORV_BATTERY_NOT_TOLD = 4 /* where this record was read nobody knows this field: the answer stands for nothing */
};

/* Where a field comes from. */
enum norv_battery_source {
  NORV_BATTERY_FROM_INFORMATION_BLOCK = 1, /* the battery-information block */
  NORV_BATTERY_FROM_CELL_SWELL_BLOCK = 2,  /* the cell swell protection block */
  NORV_BATTERY_FROM_OPERATING_SYSTEM = 3,
  NORV_BATTERY_FROM_BIOS_SETTINGS = 4,
  NORV_BATTERY_FROM_BATTERY_TEST = 5
};

typedef struct norv_battery_description {
  uint32_t size;   /* sizeof(norv_battery_description) */
  int32_t field;   /* of enum norv_battery_field */
  int32_t kind;    /* of enum norv_battery_kind */
  int32_t source;  /* of enum norv_battery_source */
  uint32_t offset; /* of the first byte in the source's block that the field is read from */
  uint32_t width;  /* how many bytes it is read from; 0 when it is not one place in a block */
  int32_t bit;     /* of the word at `offset` that a flag is, from 0; -1 when it is no single bit */
  char name[48];   /* lower-case ASCII words with a blank between, "full charge capacity"; no two fields share one */
  char unit[16]; /* as the Smart Battery Data Specification has it, "mV"; empty where there is none. Firmware that does
                    not follow that standard means something else. */
  char key[32];  /* in a report as JSON, "fullChargeCapacity"; "voltages[0]" is the first item of the list "voltages" */
  char group[24]; /* the JSON object that it lies in, "capacity"; "status.flags" lies in "status" */
  char label[48]; /* for people, "Full charge capacity" */
} norv_battery_description;

typedef struct norv_battery_value {
  uint32_t size;   /* sizeof(norv_battery_value) */
  int32_t field;   /* of enum norv_battery_field */
  int32_t kind;    /* of enum norv_battery_kind */
  int32_t state;   /* of enum norv_battery_state */
  int64_t number;  /* of a number or a flag, otherwise 0 */
  double real;     /* of a real, otherwise 0 */
  size_t textSize; /* what the value takes as a text, with its closing NUL */
} norv_battery_value;

/* Fields are numbered from 1 to this. */
NORV_BATTERY_FUNCTION int32_t norv_battery_field_count(void);

NORV_BATTERY_FUNCTION norv_battery_status norv_battery_describe_field(int32_t field,
                                                                      norv_battery_description* description);

/* Reads a field. Reading one never changes what another answers. `text` receives the value as a text, whatever its
 * kind: a number in decimal, a real with three decimals and a point, a flag as "true" or "false". With NULL and a size
 * of 0 there is no text. `value` is complete even where the text was too large for its buffer. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_read_field(const norv_battery_record* record, int32_t field,
                                                                  norv_battery_value* value, char* text,
                                                                  size_t textBufferSize);

/* The bytes that a field is read from, in whatever state it is; `needed` is their number. With a buffer of NULL and a
 * size of 0 it tells the number only. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_read_bytes(const norv_battery_record* record, int32_t field,
                                                                  uint8_t* buffer, size_t bufferSize, size_t* needed);

/* Why NORV_BATTERY_AGE is invalid, or NORV_BATTERY_VALID false. Nothing failed for other fields. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_field_error(const norv_battery_record* record, int32_t field,
                                                                   norv_battery_error* error);
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_field_error_text(const norv_battery_record* record,
                                                                        int32_t field, int32_t part, char* buffer,
                                                                        size_t bufferSize, size_t* needed);

/* The three fields of the battery test, as the test itself answers them: also where no record has its verdict. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_read_test(const norv_battery_collection* collection,
                                                                 int32_t field, norv_battery_value* value, char* text,
                                                                 size_t textBufferSize);

/* Sees one field. The pointers are valid during the call only. Anything but 0 ends the round. */
typedef int32_t (*norv_battery_visitor)(void* context, const norv_battery_description* description,
                                        const norv_battery_value* value, const char* text);

/* Calls the visitor for every field of the record, in their order. NORV_BATTERY_STOPPED when it ended the round. */
NORV_BATTERY_FUNCTION norv_battery_status norv_battery_for_each_field(const norv_battery_record* record,
                                                                      norv_battery_visitor visitor, void* context);

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-deprecated-headers,modernize-use-using,modernize-redundant-void-arg) */

#endif
