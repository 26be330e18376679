'use strict';
// Lists a program's guides, and shows its interface's description.

function make(tag, text, ...children) {
  const element = document.createElement(tag);
  if (text) element.textContent = text;
  element.append(...children);
  return element;
}

/** A schema in few words: names, with "?" behind what may be left out. */
function brief(schema, all) {
  if (!schema) return '';
  if (schema.$ref) return schema.$ref.split('/').at(-1);
  if (schema.enum) return schema.enum.map((value) => JSON.stringify(value)).join(' | ');
  if (schema.anyOf) return schema.anyOf.map((part) => brief(part, all)).join(' | ');
  if (schema.type === 'array') return `[${brief(schema.items, all)}]`;
  if (!schema.properties) return schema.type;
  const required = schema.required ?? [];
  return `{ ${Object.entries(schema.properties).map(([name, part]) =>
    `${name}${required.includes(name) ? '' : '?'}: ${brief(part, all)}`).join(', ')} }`;
}

const schemaOf = (part) => Object.values(part?.content ?? {})[0]?.schema;

function operationElement(path, method, operation, all) {
  const rows = [
    ...(operation.parameters ?? []).map((part) => part.$ref ? all.parameters[part.$ref.split('/').at(-1)] : part)
      .map(({ name, in: where, description }) => [`${where} ${name}`, description]),
    ...(operation.requestBody ? [['body', brief(schemaOf(operation.requestBody))]] : []),
    ...Object.entries(operation.responses).map(([status, response]) =>
      [status, [response.description, brief(schemaOf(response))].filter(Boolean).join(': ')]),
  ];
  return make('details', '', make('summary', '', make('code', `${method.toUpperCase()} ${path}`), make('span', operation.summary)),
    make('dl', '', ...rows.flatMap(([name, text]) => [make('dt', name), make('dd', text)])));
}

document.getElementById('guides').append(...Object.entries(guides).map(([page, title]) => {
  const link = make('a', title);
  link.href = page;
  return make('li', '', link);
}));

fetch('openapi.json').then((response) => response.json()).then(({ paths, components }) => {
  document.getElementById('operations').append(
    make('h2', 'Operations'),
    ...Object.entries(paths).flatMap(([path, methods]) =>
      Object.entries(methods).map(([method, operation]) => operationElement(path, method, operation, components))),
    make('h2', 'Data'),
    make('dl', '', ...Object.entries(components.schemas).flatMap(([name, schema]) =>
      [make('dt', name), make('dd', brief(schema))])));
});
