#pragma once

namespace mirvane::wire {

// The link between till and register. One command, one reply; the driver speaks first.
//
//   frame     = STX command checksum ETX
//   command   = code "/" *( field "/" )                  in code page 1253, no leading or trailing blanks
//   checksum  = two decimal digits: the sum of the command's byte values, modulo 256, modulo 100
//   reply     = STX result "/" printer "/" fiscal "/" *( field "/" ) ETX
//   result, printer, fiscal = two hexadecimal digits: outcome code, printer status byte, fiscal status byte
//
//   serial line   driver: CAN CAN ENQ, 1 ms, frame          register: reply          driver: ACK
//   network       driver: ENQ, 50 ms, frame                 register: ACK, reply     driver: ACK
//                 (every element its own datagram)          or NAK: cannot take the command now
//
// Example: feeding three lines is the command "F/3/". Its bytes add up to 215, so the frame is STX "F/3/15" ETX, and
// a register that succeeds answers STX "00/00/00/" ETX.

constexpr char kStx = 0x02;
constexpr char kEtx = 0x03;
constexpr char kEnq = 0x05;
constexpr char kAck = 0x06;
constexpr char kNak = 0x15;
constexpr char kCan = 0x18;

/// Speed of the serial port in bits per second. With 8 data bits, no parity and 1 stop bit a byte takes 10 bits.
constexpr int kBaud = 115200;

}  // namespace mirvane::wire
