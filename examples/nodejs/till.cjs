// A small till: connect, sell, handle refusals, pay, disconnect.
//
//   node till.cjs 127.0.0.1:9100
'use strict';
const { createObject, byReference } = require('./com.cjs');

const port = process.argv[2] ?? '127.0.0.1:9100';
const silent = true;
const till = createObject('VarlenFiscalQ7734.fiscalTrevikModule');

class Refused extends Error {}

// Calls an operation of the register. Every one has Result, Exresult and SupressError_ after its own parameters;
// optional parameters come after them.
function operate(name, given, optional = []) {
  const result = byReference(0);
  const text = byReference('');
  till.call(name, ...given, result, text, silent, ...optional);
  if (result.value !== 0) throw new Refused(`${name}: ${result.value} ${text.value}`);
}

function sell(description, quantity, price, vatRate) {
  console.log(`selling ${quantity} x ${description}`);
  operate('ItemSale', [description, quantity, price, vatRate, 1]);
}

function pay(kind, description, amount) {
  console.log(`paying ${amount.toFixed(2)} ${description}`);
  operate('Payment', [kind, description, amount, 0, 0]);
  const status = till.get('StatusRead');
  if (status.get('isTransactionOpen')) throw new Error('the receipt is not fully paid');
  status.release();
}

// Something that must fail, and how: the error's own code distinguishes an invalid call from a refusal.
function failing(kind, action) {
  try {
    action();
  } catch (error) {
    if (!kind(error)) throw error;
    console.log(`  ${error.message}`);
    return;
  }
  throw new Error('this was expected to fail');
}
const refused = (error) => error instanceof Refused;
// There is no such member: DISP_E_UNKNOWNNAME. Nothing was sent.
const unknown = (error) => error.code === '80020006';

operate('Connect_', [port]);
const serialNumber = byReference('');
operate('getSerialNumber', [serialNumber]);
console.log(`register ${serialNumber.value}`);

sell('Καφές ελληνικός', 2, 1.8, 24);
// The register has no VAT rate of 17 %.
failing(refused, () => sell('Τυρόπιτα', 1, 2.2, 17));
sell('Τυρόπιτα', 1, 2.2, 13);
// A text that is a number is accepted.
sell('Νερό', '0,5', 0.5, 13);
failing(unknown, () => operate('ItemSell', []));
operate('commentPrinterPrint', ['Σας ευχαριστούμε!', 1]);

const totals = createObject('VarlenFiscalQ7734.clsTransTotal');
operate('transactionTotals', [totals]);
console.log(`total ${totals.get('receiptTotalAmt').toFixed(2)}`);
totals.release();
// Change cannot be given on a card.
failing(refused, () => pay(2, 'ΚΑΡΤΑ', 10));
pay(1, 'ΜΕΤΡΗΤΑ', 10);

// A closed port is reported as 1, the value of the system call that closed it.
const closed = byReference(0);
till.call('DisConnect_', port, closed, byReference(''), silent);
if (closed.value !== 1) throw new Error(`DisConnect_: ${closed.value}`);
till.release();
console.log('ok');
