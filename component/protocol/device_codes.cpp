#include "protocol/device_codes.h"

#include <algorithm>
#include <array>

namespace mirvane {
namespace {

// The register's own texts, with their misspellings and mixed alphabets. Users, manuals and service technicians quote
// them, so nothing here may be corrected.
constexpr std::array<TextView, 166> kTexts = {
    u"Wrong number of fields",                                  // 01 1
    u"Field too long",                                          // 02 2
    u"Field too small",                                         // 03 3
    u"Field fixed size mismatch",                               // 04 4
    u"Field range or type check failed",                        // 05 5
    u"Bad request code",                                        // 06 6
    u"Fiscal Record Number error",                              // 07 7
    u"Fiscal Record Type error",                                // 08 8
    u"Printing type bad",                                       // 09 9
    u"Cannot execute with day open",                            // 0A 10
    u"RTC programming requires jumper",                         // 0B 11
    u"RTC date or time invalid",                                // 0C 12
    u"No records in fiscal period",                             // 0D 13
    u"Απασχολημένο σε άλλη λειτουργία",                         // 0E 14
    u"No more header records allowed",                          // 0F 15
    u"Cannot execute with block open",                          // 10 16
    u"transaction Not opened",                                  // 11 17
    u"Sign Data Error",                                         // 12 18
    u"Sign Error",                                              // 13 19
    u"Z closure time limit",                                    // 14 20
    u"z Not closure",                                           // 15 21
    u"Z closure record bad",                                    // 16 22
    u"User browsing in progress",                               // 17 23
    u"No more Invoice",                                         // 18 24
    u"Printer paper end detected",                              // 19 25
    u"Printer is offline",                                      // 1A 26
    u"fiscal unit Is offline",                                  // 1B 27
    u"Fatal hardware fiscal error",                             // 1C 28
    u"fiscal unit Is full",                                     // 1D 29
    u"No Data for Signature",                                   // 1E 30
    u"Signature not in range",                                  // 1F 31
    u"Battery fault detected",                                  // 20 32
    u"Open day for signature reprint",                          // 21 33
    u"Reprint Signature CMOS error",                            // 22 34
    u"Real-Time Clock needs programming",                       // 23 35
    u"JUMPERON",                                                // 24 36
    u"INVSALEOP",                                               // 25 37
    u"DPTINDEXERR",                                             // 26 38
    u"VATRATE",                                                 // 27 39
    u"Payment’s code is out of range (1-3)",                    // 28 40
    u"Printer Time Out",                                        // 29 41
    u"The printer tray is open",                                // 2A 42
    u"SLIP Printer Error",                                      // 2B 43
    u"Printer Head Error",                                      // 2C 44
    u"Sensor Error",                                            // 2D 45
    u"Sensor Reading Error",                                    // 2E 46
    u"NOTENDREADLEGAL",                                         // 2F 47
    u"NOTENDREADILEGAL",                                        // 30 48
    u"WRONGILEGALNUMBER",                                       // 31 49
    u"FLASHERROR",                                              // 32 50
    u"NOTFOUNDRECEIPT",                                         // 33 51
    u"NOMOREILEGALRECEIP",                                      // 34 52
    u"NOTSTARTREAD",                                            // 35 53
    u"NOTFINISHREADRECEIPTDATA",                                // 36 54
    u"NOTREADFORFOUNDRECEIPT",                                  // 37 55
    u"ENDREADFLAS",                                             // 38 56
    u"HWTRAYAGAN",                                              // 39 57
    u"NOTSTARTREADFLASH",                                       // 3A 58
    u"NOTFOUNDOPENDAY",                                         // 3B 59
    u"NOMOREINRECEIPTLINES",                                    // 3C 60
    u"NOTTRANSFERFLASH",                                        // 3D 61
    u"PRINTERDISCONECT",                                        // 3E 62
    u"TRANSACTIONINPROGRES",                                    // 3F 63
    u"TRANSACTIONNOTOPEN",                                      // 40 64
    u"TRANSACTIONISOPEN",                                       // 41 65
    u"NOMOREVAT",                                               // 42 66
    u"CASHINOPEN",                                              // 43 67
    u"CASHOUTOPEN",                                             // 44 68
    u"INPAYMENT",                                               // 45 69
    u"NOZERODM",                                                // 46 70
    u"MAXDISCOUNTINVAT",                                        // 47 71
    u"MAXDMINTRANSTOTAL",                                       // 48 72
    u"NOTEQUALDMGETSUM",                                        // 49 73
    u"NEGATIVEVATSALES",                                        // 4A 74
    u"MUSTCLOSETRANSACTION",                                    // 4B 75
    u"FLASHFULL",                                               // 4C 76
    u"NOZEROVAT",                                               // 4D 77
    u"NOSANEVATRATE",                                           // 4E 78
    u"NOSALESZEROPRICE",                                        // 4F 79
    u"NODATAFORPRNX",                                           // 50 80
    u"WORNIGDATE",                                              // 51 81
    u"FLASSTOPWORK",                                            // 52 82
    u"NOTVALIDPLU",                                             // 53 83
    u"INVALIDCATEGORI",                                         // 54 84
    u"INVALID DPT",                                             // 55 85
    u"BMP Index Error",                                         // 56 86
    u"Cutter Error",                                            // 57 87
    u"Recover data from FLASH",                                 // 58 88
    u"PAYMENT cannot be cancelled",                             // 59 89
    u"ZERO PAYMENT cannot be cancelled",                        // 5A 90
    u"NOT in Payment Mode",                                     // 5B 91
    u"Barcode Data Error",                                      // 5C 92
    u"BMP Data Error",                                          // 5D 93
    u"Clerk index error",                                       // 5E 94
    u"Clerk password error",                                    // 5F 95
    u"Price Error",                                             // 60 96
    u"Invalid DM Type",                                         // 61 97
    u"DM Index",                                                // 62 98
    u"ΝO MORE SALES",                                           // 63 99
    u"Battery Error",                                           // 64 100
    u"Clerk access problem",                                    // 65 101
    u"Baud Rate",                                               // 66 102
    u"Qty Error",                                               // 67 103
    u"In Ticket",                                               // 68 104
    u"inactive ticket",                                         // 69 105
    u"DM limit",                                                // 6A 106
    u"Blank Description",                                       // 6B 107
    u"Barcode Error",                                           // 6C 108
    u"Negative Receipt Total",                                  // 6D 109
    u"Client Index Error",                                      // 6E 110
    u"Client mot found",                                        // 6F 111
    u"Payment no change",                                       // 70 112
    u"Insert Payment amount",                                   // 71 113
    u"same header",                                             // 72 114
    u"In Error",                                                // 73 115
    u"receipt limit",                                           // 74 116
    u"Day limit",                                               // 75 117
    u"Fiscal Communication Error",                              // 76 118
    u"NAND full",                                               // 77 119
    u"AFM Error",                                               // 78 120
    u"Empty EJ",                                                // 79 121
    u"Invalid IP",                                              // 7A 122
    u"Invalid Refund",                                          // 7B 123
    u"Invalid Void",                                            // 7C 124
    u"Amount limit",                                            // 7D 125
    u"Empty Header",                                            // 7E 126
    u"inactive Clerk",                                          // 7F 127
    u"No transactions",                                         // 80 128
    u"Program AFM",                                             // 81 129
    u"Θnformatted SD",                                          // 82 130
    u"Time Error",                                              // 83 131
    u"Call Technician",                                         // 84 132
    u"Open EJ file",                                            // 85 133
    u"Write EJ file",                                           // 86 134
    u"Read EJ file",                                            // 87 135
    u"AES Code",                                                // 88 136
    u"Wrong Coupon",                                            // 89 137
    u"Ethernet communication",                                  // 8A 138
    u"Upload GSIS",                                             // 8B 139
    u"Delete Daily Folders",                                    // 8C 140
    u"WARNING before the change of INVOICE’s “ROW”",            // 8D 141
    u"Cannot change Header (in FM)",                            // 8E 142
    u"Clock’s synchronization with GSIS",                       // 8F 143
    u"SD Disconnection",                                        // 90 144
    u"Wrong or does not exist activation code",                 // 91 145
    u"Busy in GSIS communication",                              // 92 146
    u"Wrong Code",                                              // 93 147
    u"Cannot open SD File",                                     // 94 148
    u"Cannot Write SD File",                                    // 95 149
    u"Same GSIS AES Key",                                       // 96 150
    u"Reserved",                                                // 97 151
    u"Reserved",                                                // 98 152
    u"Reserved",                                                // 99 153
    u"Reserved",                                                // 9A 154
    u"Reserved",                                                // 9B 155
    u"EFTPOS Payment Failed",                                   // 9C 156
    u"EFTPOS Fail to read transactions",                        // 9D 157
    u"Πληρωμή EFTPOS σε εξέλιξη..",                             // 9E 158
    u"Inactive EFTPOS",                                         // 9F 159
    u"Reserved IP Address",                                     // A0 160
    u"FM in pause",                                             // A1 161
    u"Inactive GSIS send",                                      // A2 162
    u"Fail to set FM in pause",                                 // A3 163
    u"Wait to confirm before proceed and set the FM in pause",  // A4 164
    u"Receipt zero total",                                      // A5 165
    u"Wrong type of sale",                                      // A6 166
};

}  // namespace

TextView deviceErrorText(std::int32_t code) {
  return code >= 1 && code <= static_cast<std::int32_t>(kTexts.size()) ? kTexts[static_cast<std::size_t>(code - 1)]
                                                                       : TextView();
}

bool endsByItself(std::int32_t result) {
  return mayBeSentAgain(result) || result == static_cast<int>(DeviceCode::kCardUnderWay);
}

bool mayBeSentAgain(std::int32_t result) {
  return result == static_cast<int>(DeviceCode::kBusy) || result == static_cast<int>(DeviceCode::kGsisBusy);
}

bool isCritical(std::int32_t result) {
  constexpr std::array kCritical = {27, 28, 29, 32, 50, 76, 100, 118, 119, 132, 133, 134, 135, 144, 148, 149};
  if (result < 0) return result != link_result::kNotNow;
  return std::find(kCritical.begin(), kCritical.end(), result) != kCritical.end();
}

}  // namespace mirvane
