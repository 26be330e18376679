#pragma once

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <optional>

#include "emulator/program/pump.h"

namespace mirvane::emulator {

/// A line that carries a stream of bytes; `Stream` is an Asio class. Derived classes open it in their constructor and
/// in `comeBack`.
template <class Stream>
class StreamTransport : public Pump {
 public:
  std::string address() const override { return name_; }

 protected:
  explicit StreamTransport(const Wiring& wiring) : Pump(wiring) {}

  /// `stream` is open; `name` is its address.
  void begin(std::string name, Stream stream) {
    name_ = std::move(name);
    stream_.emplace(std::move(stream));
    receive();
  }
  void vanish() override { stream_.reset(); }

 private:
  using Error = boost::system::error_code;

  void receive() {
    const auto done = [this, before = unpluggings()](const Error& error, std::size_t count) {
      if (error == boost::asio::error::operation_aborted || unpluggings() != before) return;
      if (error) failBy(error);
      arrived({buffer_.data(), count}, {});
      if (unpluggings() == before) receive();
    };
    stream_->async_read_some(boost::asio::buffer(buffer_), done);
  }

  void transmit(Outbox::Piece piece) override {
    sending_ = std::move(piece.bytes);
    dropsBefore_ = drops();
    sendSome();
  }

  void sendSome() {
    // Bytes given to the system cannot be taken back when the till starts over, so it gets only a few at a time.
    constexpr std::size_t kMost = 1024;
    const auto done = [this, before = unpluggings()](const Error& error, std::size_t count) {
      if (error == boost::asio::error::operation_aborted || unpluggings() != before) return;
      if (error) failBy(error);
      sending_.erase(0, count);
      if (!sending_.empty() && drops() == dropsBefore_) return sendSome();
      transmitted();
      pump();
    };
    stream_->async_write_some(boost::asio::buffer(sending_, kMost), done);
  }

  [[noreturn]] void failBy(const Error& error) const {
    if (error == boost::asio::error::eof) throw TransportError(name_ + ": the line has disappeared");
    throw TransportError(name_ + ": " + error.message());
  }

  std::string name_;
  /// Empty while the line is unplugged.
  std::optional<Stream> stream_;
  std::array<char, 4096> buffer_{};
  std::string sending_;
  unsigned dropsBefore_ = 0;
};

}  // namespace mirvane::emulator
