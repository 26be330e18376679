#pragma once

#include "emulator/device.h"
#include "emulator/line.h"

// Everything that the register remembers, member by member, for writing and reading.
namespace mirvane::emulator {

// Every class lists its members once: `visit(name, member)`.

template <class Visitor>
void visitMembers(PaperLine& line, Visitor&& visit) {
  visit("text", line.text);
  visit("size", line.size);
  visit("isCut", line.isCut);
}

template <class Visitor>
void visitMembers(PrintedLine& line, Visitor&& visit) {
  visit("text", line.text);
  visit("size", line.size);
}

template <class Visitor>
void visitMembers(Settings& settings, Visitor&& visit) {
  visit("printerId", settings.printerId);
  visit("printerDescription", settings.printerDescription);
  visit("cashier", settings.cashier);
  visit("printsDepartment", settings.printsDepartment);
  visit("opensDrawerOnTotal", settings.opensDrawerOnTotal);
  visit("printsOnNoSale", settings.printsOnNoSale);
  visit("printsVatDetail", settings.printsVatDetail);
  visit("printsFooter", settings.printsFooter);
  visit("topLogo", settings.topLogo);
  visit("bottomLogo", settings.bottomLogo);
  visit("usesCutter", settings.usesCutter);
  visit("usesDisplay", settings.usesDisplay);
}

template <class Visitor>
void visitMembers(ServerSettings& server, Visitor&& visit) {
  visit("isActive", server.isActive);
  visit("url", server.url);
  visit("port", server.port);
  visit("key", server.key);
  visit("qrUrl", server.qrUrl);
}

template <class Visitor>
void visitMembers(CardTerminal& terminal, Visitor&& visit) {
  visit("isEnabled", terminal.isEnabled);
  visit("middleware", terminal.middleware);
  visit("ip", terminal.ip);
  visit("port", terminal.port);
  visit("description", terminal.description);
  visit("variant", terminal.variant);
  visit("timeout", terminal.timeout);
  visit("bitmaps", terminal.bitmaps);
  visit("acquirer", terminal.acquirer);
  visit("middlewareTerminal", terminal.middlewareTerminal);
  visit("transaction", terminal.transaction);
  visit("registerIdFormat", terminal.registerIdFormat);
}

template <class Visitor>
void visitMembers(SalesGroup& group, Visitor&& visit) {
  visit("description", group.description);
  visit("amount", group.amount);
  visit("count", group.count);
}

template <class Visitor>
void visitMembers(Department& department, Visitor&& visit) {
  visitMembers(static_cast<SalesGroup&>(department), visit);
  visit("category", department.category);
}

template <class Visitor>
void visitMembers(DayTotals& day, Visitor&& visit) {
  visit("gross", day.gross);
  visit("vat", day.vat);
  visit("voids", day.voids);
  visit("refunds", day.refunds);
  visit("cancelled", day.cancelled);
  visit("discounts", day.discounts);
  visit("markUps", day.markUps);
  visit("payments", day.payments);
  visit("cashIn", day.cashIn);
  visit("cashOut", day.cashOut);
  visit("receipts", day.receipts);
  visit("cashDocuments", day.cashDocuments);
}

template <class Visitor>
void visitMembers(CashDocument& document, Visitor&& visit) {
  visit("isIn", document.isIn);
  visit("amount", document.amount);
}

template <class Visitor>
void visitMembers(Item& item, Visitor&& visit) {
  visit("kind", item.kind);
  visit("description", item.description);
  visit("comment", item.comment);
  visit("quantity", item.quantity);
  visit("price", item.price);
  visit("department", item.department);
  visit("vat", item.vat);
  visit("category", item.category);
}

template <class Visitor>
void visitMembers(Adjustment& adjustment, Visitor&& visit) {
  visit("isDiscount", adjustment.isDiscount);
  visit("isOnItem", adjustment.isOnItem);
  visit("department", adjustment.department);
  visit("description", adjustment.description);
  visit("comment", adjustment.comment);
  visit("amount", adjustment.amount);
  visit("shares", adjustment.shares);
  visit("item", adjustment.item);
}

template <class Visitor>
void visitMembers(Payment& payment, Visitor&& visit) {
  visit("number", payment.number);
  visit("description", payment.description);
  visit("secondDescription", payment.secondDescription);
  visit("amount", payment.amount);
  visit("terminal", payment.terminal);
  visit("approval", payment.approval);
}

template <class Visitor>
void visitMembers(Journal::Prepared& file, Visitor&& visit) {
  visit("name", file.name);
  visit("source", file.source);
  visit("size", file.size);
  visit("padding", file.padding);
  visit("text", file.text);
}

template <class Visitor>
void visitMembers(Journal::Memory& memory, Visitor&& visit) {
  visit("receiptStart", memory.receiptStart);
  visit("preparationCalls", memory.preparationCalls);
  visit("files", memory.files);
  visit("signature", memory.signature);
  visit("isClosing", memory.isClosing);
  visit("isTransferred", memory.isTransferred);
}

template <class Visitor>
void visitMembers(Line::Memory& memory, Visitor&& visit) {
  visit("command", memory.command);
  visit("reply", memory.reply);
  visit("awaitsAck", memory.awaitsAck);
}

template <class Visitor>
void visitMembers(FiscalState& fiscal, Visitor&& visit) {
  visit("serialNumber", fiscal.serialNumber);
  visit("header", fiscal.header);
  visit("footer", fiscal.footer);
  visit("nextFooter", fiscal.nextFooter);
  visit("vatNumber", fiscal.vatNumber);
  visit("settings", fiscal.settings);
  visit("server", fiscal.server);
  visit("cardTerminals", fiscal.cardTerminals);
  visit("vatRates", fiscal.vatRates);
  visit("departments", fiscal.departments);
  visit("categories", fiscal.categories);
  visit("closures", fiscal.closures);
  visit("grandTotal", fiscal.grandTotal);
  visit("lastReport", fiscal.lastReport);
  visit("isDayOpen", fiscal.isDayOpen);
  visit("dayOpened", fiscal.dayOpened);
  visit("day", fiscal.day);
  visit("lastReceiptNumber", fiscal.lastReceiptNumber);
  visit("receipt", fiscal.receipt);
  visit("cashDocument", fiscal.cashDocument);
}

template <class Class, class Visitor>
void visitMembers(Class& object, Visitor&& visit) {
  object.visitMemory(visit);
}

}  // namespace mirvane::emulator
