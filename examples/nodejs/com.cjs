// Automation objects for Node.js, through the foreign function interface of the package "koffi":
//
//   const { createObject, byReference } = require('./com.cjs');
//   const till = createObject('VarlenFiscalQ7734.fiscalTrevikModule');
//   const serialNumber = byReference(''), result = byReference(0), text = byReference(''), silent = true;
//   till.call('getSerialNumber', serialNumber, result, text, silent);
//   if (result.value === 0) console.log(serialNumber.value);
//
// An argument is a number, a string, a Boolean, or one of these by reference; or an object of createObject, or null. A
// call that fails throws an Error whose `code` is the HRESULT, such as '80020005'. `release` releases an object.
'use strict';
const koffi = require('koffi');

const ole32 = koffi.load('ole32.dll');
const oleaut32 = koffi.load('oleaut32.dll');
const CLSIDFromProgID = ole32.func('int32 __stdcall CLSIDFromProgID(const char16_t *name, void *id)');
const CoCreateInstance =
  ole32.func('int32 __stdcall CoCreateInstance(void *id, void *outer, uint32 where, void *kind, void *object)');
const SysAllocString = oleaut32.func('void * __stdcall SysAllocString(const char16_t *text)');
const VariantClear = oleaut32.func('int32 __stdcall VariantClear(void *variant)');
const Release = koffi.proto('uint32 __stdcall Release(void *self)');
const GetIDsOfNames = koffi.proto(
  'int32 __stdcall GetIDsOfNames(void *self, void *kind, void *names, uint32 count, uint32 locale, void *ids)');
const Invoke = koffi.proto('int32 __stdcall Invoke(void *self, int32 id, void *kind, uint32 locale, uint16 flags, ' +
  'void *parameters, void *result, void *exception, void *position)');

const word = koffi.sizeof('void *');
const variantSize = 8 + 2 * word;
const none = Buffer.alloc(16);
const iDispatch = Buffer.from('0004020000000000c000000000000046', 'hex');
const numbers = { 2: 'int16', 3: 'int32', 4: 'float', 5: 'double', 17: 'uint8' };
const [BSTR, DISPATCH, BOOL, VARIANT, BYREF] = [8, 9, 11, 12, 0x4000];

const at = (memory, offset, type) => koffi.decode(koffi.address(memory), offset, type);
const put = (memory, offset, type, value) => koffi.encode(koffi.address(memory), offset, type, value);

function check(outcome, what) {
  if (outcome >= 0) return;
  const code = (outcome >>> 0).toString(16).toUpperCase();
  throw Object.assign(new Error(`${what}: ${code}`), { code });
}

class Reference {
  constructor(value) { this.value = value; }
}

function variant(value) {
  const memory = Buffer.alloc(variantSize);
  const fill = (type, kind, content) => { put(memory, 0, 'uint16', type); put(memory, 8, kind, content); };
  if (value instanceof Reference) {
    value.memory = variant(value.value);
    fill(BYREF | VARIANT, 'void *', koffi.address(value.memory));
  } else if (typeof value === 'string') fill(BSTR, 'void *', SysAllocString(value));
  else if (typeof value === 'boolean') fill(BOOL, 'int16', value ? -1 : 0);
  else if (typeof value === 'number') fill(5, 'double', value);
  else if (value === null) fill(DISPATCH, 'void *', null);
  else if (value instanceof AutomationObject) fill(DISPATCH, 'void *', value.pointer);
  return memory;
}

// The value that a VARIANT holds; the VARIANT is cleared.
function valueOf(memory) {
  const type = at(memory, 0, 'uint16');
  const pointer = at(memory, 8, 'void *');
  if (type === DISPATCH) return pointer ? new AutomationObject(pointer) : null;
  const value = type === BSTR ? at(memory, 8, 'const char16_t *') || ''
    : type === BOOL ? at(memory, 8, 'int16') !== 0
    : type in numbers ? at(memory, 8, numbers[type]) : undefined;
  VariantClear(memory);
  return value;
}

class AutomationObject {
  constructor(pointer) { this.pointer = pointer; }

  call(name, ...given) { return this.invoke(name, 1, given); }
  get(name, ...given) { return this.invoke(name, 2, given); }
  set(name, value) { this.invoke(name, 4, [value]); }
  release() { this.method(2, Release); }

  method(row, type, ...given) {
    const table = koffi.decode(this.pointer, 'void *');
    return koffi.call(koffi.decode(table, row * word, 'void *'), type, this.pointer, ...given);
  }

  invoke(name, flags, given) {
    const text = Buffer.from(name + '\0', 'utf16le');
    const [names, id, parameters, result] = [word, 4, 2 * word + 8, variantSize].map((size) => Buffer.alloc(size));
    put(names, 0, 'void *', koffi.address(text));
    check(this.method(5, GetIDsOfNames, none, names, 1, 0, id), name);

    // Arguments are in reverse order. A property's new value has a name of its own, -3.
    const memories = given.map(variant).reverse();
    const list = Buffer.concat(memories);
    const newValue = Buffer.from(Int32Array.of(-3).buffer);
    put(parameters, 0, 'void *', koffi.address(list));
    if (flags === 4) put(parameters, word, 'void *', koffi.address(newValue));
    put(parameters, 2 * word, 'uint32', given.length);
    put(parameters, 2 * word + 4, 'uint32', flags === 4 ? 1 : 0);
    const outcome = this.method(6, Invoke, at(id, 0, 'int32'), none, 0, flags, parameters, result, null, null);
    for (const argument of given) if (argument instanceof Reference) argument.value = valueOf(argument.memory);
    for (const memory of memories) if (at(memory, 0, 'uint16') === BSTR) VariantClear(memory);
    check(outcome, name);
    return valueOf(result);
  }
}

function createObject(name) {
  const id = Buffer.alloc(16);
  const object = Buffer.alloc(word);
  check(CLSIDFromProgID(name, id), name);
  check(CoCreateInstance(id, null, 1, iDispatch, object), name);
  return new AutomationObject(at(object, 0, 'void *'));
}

check(ole32.func('int32 __stdcall CoInitialize(void *reserved)')(null), 'CoInitialize');
module.exports = { createObject, byReference: (value) => new Reference(value) };
