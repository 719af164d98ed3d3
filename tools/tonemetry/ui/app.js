// The live tuning page: the mode tree, the modules of a mode, a module's values (editable in
// place), the device's state and the session's edits, all through the server's JSON API.
// Outside checks rely on the data-mode, data-path, data-name and data-status attributes.

const token = document.querySelector('meta[name="tonemetry-token"]').content;
const statusLine = document.querySelector('[data-status]');
const refreshSeconds = 3;

class ApiError extends Error {
  constructor(message, disconnected) {
    super(message);
    this.disconnected = disconnected;
  }
}

async function reply(response) {
  const body = await response.json();
  setConnection(response.status !== 503 ? 'connected' : (body.busy ? 'busy' : 'disconnected'));
  if (!response.ok) {
    throw new ApiError(body.error || response.statusText, response.status === 503);
  }
  return body;
}

async function get(route, parameters = {}) {
  return reply(await fetch(`/api/${route}?${new URLSearchParams(parameters)}`));
}

async function post(route, body = {}) {
  return reply(await fetch(`/api/${route}`, {
    method: 'POST',
    headers: { 'Content-Type': 'application/json', 'X-Tonemetry-Token': token },
    body: JSON.stringify(body),
  }));
}

function showStatus(text, state) {
  statusLine.textContent = text;
  statusLine.dataset.status = state;
}

// 'connected', 'busy' (the device serves another client) or 'disconnected'; the page asks
// again at its next refresh.
function setConnection(state) {
  const element = document.getElementById('connection');
  element.dataset.connection = state;
  element.textContent = state === 'connected' ? '' : `${state}, retrying`;
}

function element(tag, attributes = {}, text = '') {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    node.setAttribute(name, value);
  }
  node.textContent = text;
  return node;
}

// ---- Mode tree ---------------------------------------------------------------------------

let chosenMode = null;

function modeItem(path, label) {
  const item = element('li', { 'data-tree': path });
  const toggle = element('span', { class: 'toggle' }, '+');
  const button = element('button', { class: 'mode', type: 'button', 'data-mode': path }, label);
  const children = element('ul');
  children.hidden = true;
  let loaded = false;
  toggle.addEventListener('click', async () => {
    if (!loaded) {
      try {
        for (const child of (await get('modes', { mode: path })).modes) {
          children.append(modeItem(`${path}|${child}`, child));
        }
        loaded = true;
      } catch (error) {
        showStatus(`modes of ${path}: ${error.message}`, 'error');
        return;
      }
    }
    children.hidden = !children.hidden;
    toggle.textContent = children.hidden ? '+' : '\u2212';
  });
  button.addEventListener('click', () => chooseMode(path));
  item.append(toggle, button, children);
  return item;
}

async function chooseMode(path) {
  chosenMode = path;
  for (const button of document.querySelectorAll('button.mode')) {
    button.classList.toggle('chosen', button.dataset.mode === path);
  }
  document.getElementById('chosen-mode').textContent = `in ${path}`;
  const list = document.getElementById('module-list');
  list.replaceChildren();
  try {
    for (const module of (await get('modules', { mode: path })).modules) {
      const button = element('button', { class: 'module', type: 'button', 'data-mode': path, 'data-module': module.name },
        module.name);
      button.addEventListener('click', () => openModule(path, module.name));
      const item = element('li');
      item.append(button, element('span', { class: 'from' }, ` from ${module.from}`));
      list.append(item);
    }
  } catch (error) {
    showStatus(`modules of ${path}: ${error.message}`, 'error');
  }
}

// ---- A module's values -------------------------------------------------------------------

const integerRanges = {
  UInt8: [0, 255], UInt16: [0, 65535], Int32: [-2147483648, 2147483647], UInt32: [0, 4294967295],
  Int64: [-(2n ** 63n), 2n ** 63n - 1n], UInt64: [0n, 2n ** 64n - 1n],
};

// Why `text` cannot be a value of `type`, or null when it can.
function typeProblem(type, text) {
  const range = integerRanges[type];
  if (range) {
    if (!/^-?\d+$/.test(text.trim())) {
      return `${type} takes a whole number`;
    }
    const value = typeof range[0] === 'bigint' ? BigInt(text.trim()) : Number(text.trim());
    return (value < range[0] || value > range[1]) ? `${type} takes ${range[0]} to ${range[1]}` : null;
  }
  if (type === 'Float' && (text.trim() === '' || !Number.isFinite(Number(text)))) {
    return 'Float takes a number';
  }
  return null;
}

async function commitEdit(input, answer) {
  const { mode, path, name } = input.dataset;
  const value = input.type === 'checkbox' ? (input.checked ? '1' : '0') : input.value;
  for (const part of (input.dataset.elementType ? value.split(',') : [value])) {
    const problem = typeProblem(input.dataset.elementType || input.dataset.type, part);
    if (problem) {
      showStatus(`${name}: ${problem}; not sent`, 'error');
      return;
    }
  }
  showStatus(`setting ${name}`, 'busy');
  try {
    const result = await post('set', { mode, path, name, value });
    if (result.confirmed) {
      const held = result.values.find((item) => item.name === name).value;
      showValue(input, held);
      answer.textContent = `device: ${held}`;
      answer.classList.remove('refused');
      showStatus(`${name} = ${held}`, 'ok');
      showEdits(result.edits);
    } else {
      const holds = result.holds === null ? 'no such value' : result.holds;
      if (result.holds !== null) {
        showValue(input, holds);
      }
      answer.textContent = `not taken; device holds ${holds}`;
      answer.classList.add('refused');
      showStatus(`not confirmed: ${name}; the device holds ${holds}`, 'error');
    }
  } catch (error) {
    showStatus(`${name}: ${error.message}`, 'error');
  }
}

function showValue(input, text) {
  if (input.type === 'checkbox') {
    input.checked = text !== '0' && text !== '';
  } else {
    input.value = text;
  }
}

function valueRow(mode, path, row) {
  const line = element('div', { class: 'row' });
  const label = element('label', {}, row.name);
  const input = element('input', {
    'data-mode': mode, 'data-path': path, 'data-name': row.name, 'data-type': row.type,
    type: row.type === 'Boolean' ? 'checkbox' : 'text',
  });
  const answer = element('span', { class: 'answer' });
  input.addEventListener('change', () => commitEdit(input, answer));
  label.htmlFor = input.id = `v-${path}.${row.name}`;
  line.append(label, input, element('span', { class: 'type' }, row.type), answer);
  return { line, input };
}

// Chart.js is fetched the first time an array is plotted, so that the page's first view
// does not wait for it.
let chartLoading = null;
function loadChart() {
  chartLoading ??= new Promise((resolve, reject) => {
    const script = element('script', { src: '/chartjs/chart.min.js' });
    script.addEventListener('load', () => resolve(window.Chart));
    script.addEventListener('error', () => reject(new Error('Chart.js could not be loaded')));
    document.head.append(script);
  });
  return chartLoading;
}

function arrayView(mode, path, row, text) {
  const box = element('div');
  const { line, input } = valueRow(mode, path, row);
  input.dataset.elementType = row.type;
  input.value = text;
  const elements = text === '' ? [] : text.split(',');
  const table = element('table', { class: 'array' });
  const cells = element('tr');
  for (const value of elements) {
    cells.append(element('td', {}, value));
  }
  table.append(cells);
  box.append(line, table);
  const numbers = elements.map(Number);
  if (elements.length > 1 && numbers.every(Number.isFinite)) {
    const canvas = element('canvas', { 'data-plot': `${path}.${row.name}` });
    box.append(canvas);
    loadChart().then((Chart) => new Chart(canvas, {
      type: 'line',
      data: { labels: numbers.map((_, index) => index), datasets: [{ label: row.name, data: numbers, pointRadius: 1 }] },
      options: { animation: false, plugins: { legend: { display: false } } },
    })).catch((error) => showStatus(error.message, 'error'));
  }
  return box;
}

async function renderRecord(container, mode, path) {
  let rows;
  try {
    rows = (await get('info', { mode, path })).rows;
  } catch (error) {
    showStatus(`${path}: ${error.message}`, 'error');
    return;
  }
  // Each value keeps its place among the records; the texts come in one request afterwards.
  const leaves = [];
  for (const row of rows) {
    if (!row.name || row.type === 'Module') {
      continue;
    }
    if (row.type === 'Structure') {
      const names = row.count === undefined ? [row.name] : [...Array(row.count).keys()].map((i) => `${row.name}[${i}]`);
      if (row.count > 1) {
        container.append(heatMapButton(mode, path, row.name, names));
      }
      for (const name of names) {
        const details = element('details');
        details.append(element('summary', { 'data-record': name }, name));
        details.addEventListener('toggle', () => {
          if (details.open && details.children.length === 1) {
            renderRecord(details, mode, `${path}.${name}`);
          }
        });
        container.append(details);
      }
    } else {
      const slot = element('div');
      container.append(slot);
      leaves.push({ row, slot });
    }
  }
  if (leaves.length === 0) {
    return;
  }
  let texts;
  try {
    texts = new Map((await get('values', { mode, path, names: leaves.map((leaf) => leaf.row.name).join(',') }))
      .values.map((item) => [item.name, item.value]));
  } catch (error) {
    showStatus(`${path}: ${error.message}`, 'error');
    return;
  }
  for (const { row, slot } of leaves) {
    const text = texts.get(row.name) ?? '';
    if (row.count !== undefined) {
      slot.append(arrayView(mode, path, row, text));
    } else {
      const { line, input } = valueRow(mode, path, row);
      showValue(input, text);
      slot.append(line);
    }
  }
}

// ---- Heat maps of a list of records whose number arrays have equal lengths --------------

// The arrays of numbers that every record of `records` (paths) holds with one length each:
// name to rows of numbers, one row a record.
async function equalRows(mode, records) {
  let shared = null;
  const rows = new Map();
  for (const record of records) {
    const arrays = (await get('info', { mode, path: record })).rows
      .filter((row) => row.count !== undefined && row.type !== 'Structure' && row.count > 0);
    const names = arrays.map((row) => row.name);
    shared = shared === null ? names : shared.filter((name) => names.includes(name));
    if (shared.length === 0) {
      return rows;
    }
    const texts = (await get('values', { mode, path: record, names: shared.join(',') })).values;
    for (const { name, value } of texts) {
      rows.set(name, [...(rows.get(name) ?? []), value.split(',').map(Number)]);
    }
  }
  for (const [name, table] of rows) {
    if (!shared.includes(name) || table.some((line) => line.length !== table[0].length || !line.every(Number.isFinite))) {
      rows.delete(name);
    }
  }
  return rows;
}

// Rows as cells coloured from blue (least) to red (most).
function heatMap(key, table) {
  const cell = 8;
  const canvas = element('canvas', { 'data-heatmap': key, width: table[0].length * cell, height: table.length * cell });
  const context = canvas.getContext('2d');
  const values = table.flat();
  const least = Math.min(...values);
  const span = (Math.max(...values) - least) || 1;
  table.forEach((line, y) => line.forEach((value, x) => {
    const share = (value - least) / span;
    context.fillStyle = `hsl(${240 - 240 * share}, 80%, 50%)`;
    context.fillRect(x * cell, y * cell, cell, cell);
  }));
  const figure = element('figure');
  figure.append(canvas, element('figcaption', {}, `${key}: ${least} to ${least + span}`));
  return figure;
}

function heatMapButton(mode, path, name, records) {
  const button = element('button', { type: 'button', 'data-heatmaps': `${path}.${name}` }, `heat maps of ${name}`);
  button.addEventListener('click', async () => {
    button.disabled = true;
    try {
      const rows = await equalRows(mode, records.map((record) => `${path}.${record}`));
      for (const [array, table] of rows) {
        button.after(heatMap(`${path}.${name}.${array}`, table));
      }
      showStatus(rows.size ? `${rows.size} heat map(s) of ${name}` : `${name} has no arrays of equal length`, 'ok');
    } catch (error) {
      showStatus(`${name}: ${error.message}`, 'error');
      button.disabled = false;
    }
  });
  return button;
}

async function openModule(mode, name) {
  for (const button of document.querySelectorAll('button.module')) {
    button.classList.toggle('chosen', button.dataset.module === name);
  }
  document.getElementById('record-title').textContent = `${name} in ${mode}`;
  const body = document.getElementById('record-body');
  body.replaceChildren();
  await renderRecord(body, mode, name);
}

// ---- Device state and edits --------------------------------------------------------------

function fillTable(id, items) {
  const table = document.getElementById(id);
  table.replaceChildren();
  for (const item of items) {
    const line = element('tr');
    line.append(element('td', {}, item.id), element('td', {}, item.value));
    table.append(line);
  }
}

async function refreshDevice() {
  try {
    const info = await get('device');
    const list = document.getElementById('device-info');
    list.replaceChildren(element('dt', {}, 'name'), element('dd', {}, info.name),
      element('dt', {}, 'version'), element('dd', {}, info.version));
    fillTable('controls', (await get('controls')).controls);
    fillTable('triggers', (await get('triggers')).triggers);
    const active = new Set((await get('active')).active.map((mode) => (mode.startsWith('Default') ? mode : `Default|${mode}`)));
    for (const button of document.querySelectorAll('button.mode')) {
      button.classList.toggle('active', active.has(button.dataset.mode));
    }
  } catch (error) {
    if (!error.disconnected) {
      showStatus(`device: ${error.message}`, 'error');
    }
  }
}

function showEdits(edits) {
  const log = document.getElementById('edit-log');
  log.replaceChildren();
  for (const edit of edits) {
    const where = edit.path ? `${edit.module}.${edit.path}` : edit.module;
    log.append(element('li', { 'data-edit-mode': edit.mode },
      `${edit.mode} ${where} ${edit.name}: ${edit.old} \u2192 ${edit.value}`));
  }
}

document.getElementById('undo').addEventListener('click', async () => {
  try {
    const result = await post('undo');
    showEdits(result.edits);
    showStatus(result.values.length ? `undone: ${result.values.map((v) => `${v.name} = ${v.value}`).join(', ')}`
      : 'nothing to undo', 'ok');
    if (chosenMode) {
      const title = document.getElementById('record-title').textContent;
      const [module] = title.split(' in ');
      if (module && module !== 'Values') {
        await openModule(chosenMode, module);
      }
    }
  } catch (error) {
    showStatus(`undo: ${error.message}`, 'error');
  }
});

document.getElementById('export').addEventListener('click', async () => {
  const edits = await get('edits');
  const link = element('a', {
    href: URL.createObjectURL(new Blob([JSON.stringify(edits, null, 2)], { type: 'application/json' })),
    download: 'edits.json',
  });
  link.click();
  URL.revokeObjectURL(link.href);
});

async function start() {
  const session = await get('session');
  document.getElementById('source').textContent = session.source;
  document.getElementById('mode-tree').append(modeItem('Default', 'Default'));
  showEdits((await get('edits')).edits);
  await refreshDevice();
  setInterval(refreshDevice, refreshSeconds * 1000);
  showStatus('ready', 'ok');
}

start();
