'use strict';
const guides = {
  'emulator.md': 'First steps',
  'README.md': 'Reference: options, faults, checks',
  'http.md': 'The HTTP interface, with examples',
  'openapi.json': 'The HTTP interface, as OpenAPI',
};
