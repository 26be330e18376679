'use strict';
const guides = {
  'service.md': 'Receipts over HTTP',
  'result-codes.md': 'The result codes, and what to do',
  'openapi.json': 'The interface, as OpenAPI',
};
