// The workbench page: every value, range, unit, meaning, blend and chart comes from the server,
// which takes them from the tuning description and the driver library. Nothing is computed here.
'use strict';

const token = new URLSearchParams(location.search).get('token') || '';
const state = { overview: null, table: 0, view: null };
const $ = (id) => document.getElementById(id);

function el(tag, attrs, ...children) {
  const e = document.createElement(tag);
  for (const [k, v] of Object.entries(attrs || {})) {
    if (k === 'class') e.className = v; else if (k.startsWith('on')) e.addEventListener(k.slice(2), v);
    else e.setAttribute(k, v);
  }
  for (const c of children) e.append(c instanceof Node ? c : document.createTextNode(String(c)));
  return e;
}

async function api(path, body) {
  const init = { headers: { 'X-Workbench-Token': token } };
  if (body !== undefined) {
    init.method = 'POST';
    init.headers['Content-Type'] = 'application/json';
    init.body = JSON.stringify(body);
  }
  const res = await fetch('/api/' + path, init);
  const data = await res.json();
  if (!res.ok && !data.error) data.error = 'the workbench answered ' + res.status;
  return data;
}

function say(text) { $('status').textContent = text; }

function svgSource(svg) { return 'data:image/svg+xml;charset=utf-8,' + encodeURIComponent(svg); }

function rangeText(f) { return f.low + ' to ' + f.high; }

// ---- views ----

function showView(name) {
  for (const tab of document.querySelectorAll('nav [role=tab]')) {
    const on = tab.id === 'tab-' + name;
    tab.setAttribute('aria-selected', on);
    tab.tabIndex = on ? 0 : -1;
    $(tab.getAttribute('aria-controls')).hidden = !on;
  }
}

// ---- table set ----

function renderTableSet(ov, states) {
  $('table-list').replaceChildren(...ov.tables.map((t) => el('li', {}, t.label)));
  $('findings').replaceChildren(...ov.findings.map((f) => el('li', { class: 'note' }, f)));
  const rows = states.rows;
  const scenes = [...new Map(rows.map((r) => [r.imageScene, r.scene])).entries()];
  const columns = [];
  for (const night of [false, true])
    for (const bw of [false, true])
      for (const hdr of ['linear', 'HDR', 'WDR']) columns.push({ night, bw, hdr });
  const head1 = el('tr', {}, el('th', { rowspan: 2 }, 'image scene'));
  for (const night of [false, true])
    for (const bw of [false, true])
      head1.append(el('th', { colspan: 3 }, (night ? 'night' : 'day') + ', ' + (bw ? 'black-and-white' : 'colour')));
  const head2 = el('tr', {}, ...columns.map((c) => el('th', {}, c.hdr)));
  const body = scenes.map(([scene, name]) => {
    const tr = el('tr', {}, el('th', {}, scene + (name ? ' ' + name : '')));
    for (const c of columns) {
      const r = rows.find((x) => x.imageScene === scene && x.night === c.night && x.blackWhite === c.bw && x.hdr === c.hdr);
      if (!r) { tr.append(el('td', {}, '')); continue; }
      const kind = r.present ? 'own' : r.chosen ? 'fallback' : 'none';
      // Break opportunities after the underscores, not inside words.
      const label = r.chosen ? r.chosen.replace(/^PARAM_/, '').replace(/_/g, '_\u200b') : '(none)';
      const td = el('td', { class: 'cell ' + kind, tabindex: 0, 'aria-label': 'row ' + r.row + ': ' + (r.chosen || 'no table') + ' (' + kind + ')' }, label);
      const show = () => showWhy(r);
      td.addEventListener('click', show);
      td.addEventListener('keydown', (e) => { if (e.key === 'Enter' || e.key === ' ') { e.preventDefault(); show(); } });
      tr.append(td);
    }
    return tr;
  });
  $('state-map').replaceChildren(el('thead', {}, head1, head2), el('tbody', {}, ...body));
}

function showWhy(r) {
  const what = 'Map row ' + r.row + ': ' + (r.blackWhite ? 'black-and-white' : 'colour') + ', ' + r.hdr + ', ' +
    (r.night ? 'night' : 'day') + ', image scene ' + r.imageScene + (r.scene ? ' (' + r.scene + ')' : '') +
    ' asks for ' + r.asks + '; the library selects ' + (r.chosen || 'no table') + '.';
  const steps = r.why.length ? r.why : ['The table the row asks for is in the file.'];
  $('state-why').replaceChildren(el('p', {}, what), el('ol', {}, ...steps.map((s) => el('li', {}, s))));
}

// ---- edits ----

// Checks the typed value with the server (as the console checks it); Enter takes it.
function editableInput(field, step, value, label) {
  const input = el('input', { value, 'aria-label': label, inputmode: 'numeric' });
  const note = el('span', { class: 'note' });
  let serial = 0;
  const send = async (apply) => {
    const mine = ++serial;
    const r = await api('edit', { table: state.table, field: field.index, step, text: input.value, apply });
    if (mine !== serial) return r;  // a later keystroke's answer decides the note
    if (r.error) { note.textContent = r.error; note.className = 'note refused'; return r; }
    note.textContent = r.note || '';
    note.className = r.taken ? 'note' : 'note refused';
    input.setAttribute('aria-invalid', !r.taken);
    input.title = note.textContent;  // the grid's cells have no room for the note beside them
    if (!note.isConnected && note.textContent) say(field.name + ', gain step ' + step + ': ' + note.textContent);
    return r;
  };
  input.addEventListener('input', () => send(false));
  input.addEventListener('keydown', async (e) => {
    if (e.key !== 'Enter') return;
    const r = await send(true);
    if (r.stored) {
      say('took ' + r.field + ' = ' + r.value);
      await loadTable(false);
    }
  });
  return { input, note };
}

// ---- stage records ----

function renderStages(view) {
  const head = el('tr', {}, ...['record', 'field', 'value', 'DSP range', 'unit', 'meaning', 'check'].map((h) => el('th', {}, h)));
  const rows = view.stages.map((f) => {
    const e = editableInput(f, 0, f.value, f.path);
    const tr = el('tr', { class: f.outside ? 'outside' : '' },
      el('td', {}, f.record || 'table'), el('th', { scope: 'row' }, (f.group ? f.group + '.' : '') + f.name),
      el('td', { class: 'value' }, e.input), el('td', {}, rangeText(f)), el('td', {}, f.unit), el('td', {}, f.meaning),
      el('td', {}, f.outside ? el('span', { class: 'outside-mark' }, 'outside ') : '', e.note));
    return tr;
  });
  $('stage-fields').replaceChildren(el('thead', {}, head), el('tbody', {}, ...rows));
}

// ---- fusion ----

function renderFusionSteps(view) {
  const head = el('tr', {}, el('th', {}, 'field'), el('th', {}, 'DSP range'),
    ...Array.from({ length: state.overview.gainSteps }, (_, s) => el('th', {}, 'step ' + s)));
  const rows = view.fusion.map((f) => el('tr', {},
    el('th', { class: 'field', scope: 'row', title: f.meaning + (f.unit ? ' (' + f.unit + ')' : '') }, f.name),
    el('td', {}, rangeText(f)),
    ...f.values.map((v, s) => {
      const e = editableInput(f, s, v, f.name + ', gain step ' + s);
      const td = el('td', { class: f.outside[s] ? 'outside' : '' }, e.input);
      return td;
    })));
  $('fusion-steps').replaceChildren(el('thead', {}, head), el('tbody', {}, ...rows));
  $('fusion-chart').src = '/api/plot.svg?i=' + state.table + '&token=' + token + '&v=' + Date.now();
}

function control() {
  return 'start=' + $('gain-start').value + '&end=' + $('gain-end').value + '&coef=' + $('gain-coef').value;
}

// A step box that is empty or past the last gain step waits for a whole number rather than asking the server.
function stepsComplete() {
  const last = state.overview.gainSteps - 1;
  return ['gain-start', 'gain-end'].every((id) => /^[0-9]+$/.test($(id).value) && Number($(id).value) <= last);
}

let blendSerial = 0;
let pairTimer = 0;
async function redrawBlend() {
  const serial = ++blendSerial;
  const t0 = performance.now();
  $('gain-coef-value').textContent = Number($('gain-coef').value).toFixed(2);
  if (!stepsComplete()) {
    $('redraw-time').textContent = 'start and end step: 0 to ' + (state.overview.gainSteps - 1);
    return;
  }
  const r = await api('blend?i=' + state.table + '&' + control());
  if (serial !== blendSerial) return;  // a later move is on its way
  if (r.error) { say(r.error); return; }
  const fields = state.view.fusion;
  const [from, to] = [Number($('gain-start').value), Number($('gain-end').value)];
  $('blend-values').replaceChildren(
    el('thead', {}, el('tr', {}, ...['field', 'step ' + from, 'step ' + to, 'blended', 'DSP range'].map((h) => el('th', {}, h)))),
    el('tbody', {}, ...fields.map((f) => {
      const v = r.values[f.name];
      const out = v < f.low || v > f.high;
      return el('tr', { class: out ? 'outside' : '', 'data-field': f.name }, el('th', { scope: 'row' }, f.name),
        el('td', {}, f.values[from]), el('td', {}, f.values[to]), el('td', { class: 'blended' }, v),
        el('td', {}, rangeText(f) + (out ? ' (outside)' : '')));
    })));
  const img = $('blend-chart');
  img.src = svgSource(r.svg);
  await img.decode().catch(() => {});
  const ms = performance.now() - t0;
  window.workbenchRedrawMs = ms;
  window.workbenchBlendShown = control();  // which control the shown blend belongs to
  $('redraw-time').textContent = 'redrawn in ' + ms.toFixed(0) + ' ms';
  // The pair follows once the control rests, so that it does not slow the blend while it moves.
  clearTimeout(pairTimer);
  pairTimer = setTimeout(redrawPair, 150);
}

function fillMonoTables() {
  const source = $('mono-source').value;
  const file = state.overview.files.find((f) => f.name === source);
  const tables = source === '' ? state.overview.tables : (file && file.tables) || [];
  const keep = $('mono-table').value;
  $('mono-table').replaceChildren(...tables.map((t) => el('option', { value: t.index }, t.label)));
  // By default the table of the same type as the colour one, else the one the library selects
  // for a black-and-white, linear, daytime camera in the base scene.
  const colour = state.overview.tables[state.table];
  const base = state.states.rows.find((r) => r.blackWhite && r.hdr === 'linear' && !r.night && r.imageScene === 0);
  const fallback = source === '' ? tables.find((t) => base && t.label === base.chosen) : tables.find((t) => t.type === colour.type);
  if (keep && tables[keep]) $('mono-table').value = keep; else if (fallback) $('mono-table').value = fallback.index;
}

async function redrawPair() {
  const source = $('mono-source').value;
  const r = await api('pair?colour=' + state.table + '&source=' + encodeURIComponent(source) + '&mono=' +
    $('mono-table').value + '&' + control());
  if (r.error) { $('pair-values').replaceChildren(el('tr', {}, el('td', { class: 'note refused' }, r.error))); return; }
  $('pair-values').replaceChildren(
    el('thead', {}, el('tr', {}, ...['field', 'colour', 'mono', 'to the DSP', 'DSP range', 'why'].map((h) => el('th', {}, h)))),
    el('tbody', {}, ...r.rows.map((x) => el('tr', { class: x.outside ? 'outside' : '' },
      el('th', { scope: 'row' }, x.name), el('td', {}, x.colour), el('td', {}, x.mono), el('td', {}, x.dsp),
      el('td', {}, x.low + ' to ' + x.high), el('td', { class: 'note' }, x.why)))));
  $('pair-chart').src = svgSource(r.svg);
}

// ---- compare and save ----

let compared = false;  // the side-by-side view follows the table chooser once a comparison ran
async function runCompare() {
  const r = await api('compare', { name: $('compare-with').value, table: state.table });
  if (r.error) { $('compare-summary').textContent = r.error; return; }
  compared = true;
  $('compare-summary').textContent = r.lines.length ? r.lines.length + ' differences from ' + r.other +
    ' (as ispdsp-cfg diff reports them); tables with changed fields:' : 'no differences from ' + r.other;
  $('compare-tables').replaceChildren(...r.changedTables.map((i) => el('button', {
    onclick: () => { $('table-choice').value = i; $('table-choice').dispatchEvent(new Event('change')); },
  }, state.overview.tables[i].label)));
  $('compare-lines').replaceChildren(...r.lines.map((line) => el('li', {}, line)));
  const t = r.table;
  $('compare-table').textContent = t.otherLabel ? t.label + ' (edited) and ' + t.otherLabel + ' of ' + r.other
    : t.label + ': ' + r.other + ' has no table of this type';
  const onlyChanged = $('compare-changed-only').checked;
  $('compare-side').replaceChildren(
    el('thead', {}, el('tr', {}, ...['field', 'the edited tables', r.other, ''].map((h) => el('th', { scope: 'col' }, h)))),
    el('tbody', {}, ...t.fields.filter((f) => f.differs || !onlyChanged).map((f) =>
      el('tr', { class: f.differs ? 'changed' : '' }, el('th', { scope: 'row' }, f.path), el('td', {}, f.mine),
        el('td', {}, f.theirs), el('td', { class: 'change-mark' }, f.differs ? 'changed' : '')))));
}

// ---- simulate ----

let simSerial = 0;
async function runSimulation() {
  const serial = ++simSerial;
  const [stage, field] = ($('sim-field').value || ' ').split(' ');
  $('sim-summary').textContent = 'running ' + $('sim-scenario').value + ' in the simulator…';
  const r = await api('simulate', { scenario: $('sim-scenario').value, stage, field });
  if (serial !== simSerial) return;
  if (r.error) { $('sim-summary').textContent = 'Not run: ' + r.error; $('sim-chart').hidden = true; return; }
  const stages = [...new Set(r.fields.map((f) => f.stage))];
  $('sim-field').replaceChildren(...stages.map((st) => el('optgroup', { label: st },
    ...r.fields.filter((f) => f.stage === st).map((f) => el('option', { value: f.stage + ' ' + f.field }, f.stage + ' ' + f.field)))));
  $('sim-field').value = r.stage + ' ' + r.field;
  const end = r.end;
  const messages = Object.entries(end.messages || {}).map(([k, v]) => k + ' ' + v).join(', ');
  $('sim-summary').textContent = r.scenario + ' (' + r.description + '): ' + end.frames + ' frames; messages ' + messages +
    '; ' + end.failedCalls + ' failed calls; ' + end.expectedOutOfRange + ' messages with values outside the DSP range by design' +
    ((end.failures || []).length ? '; failures: ' + end.failures.join('; ') : '');
  $('sim-chart').src = svgSource(r.svg);
  $('sim-chart').hidden = false;
  $('sim-values').replaceChildren(
    el('thead', {}, el('tr', {}, ...['frame', 'pipe', r.field, 'note'].map((h) => el('th', { scope: 'col' }, h)))),
    el('tbody', {}, ...r.rows.map((x) => el('tr', { class: x.note.startsWith('!') ? 'outside' : '' },
      el('td', {}, x.frame), el('td', {}, x.pipe), el('td', {}, x.value), el('td', { class: 'note' }, x.note)))));
}

async function runSave() {
  const r = await api('save', { name: $('save-name').value, replace: $('save-replace').checked });
  $('save-result').textContent = r.error ? 'Not saved: ' + r.error
    : 'Saved ' + r.json + ' and ' + r.bin + ' (' + r.binBytes + ' bytes)' + (r.warnings.length ? '; ' + r.warnings.join('; ') : '');
  if (!r.error) await loadOverview();
}

// ---- loading ----

async function loadOverview(fetched) {
  const ov = await (fetched || api('overview'));
  state.overview = ov;
  const chooser = (id, withEdited) => {
    const keep = $(id).value;
    const options = ov.files.map((f) => el('option', { value: f.name }, f.name));
    if (withEdited) options.unshift(el('option', { value: '' }, 'the edited tables'));
    $(id).replaceChildren(...options);
    if ([...$(id).options].some((o) => o.value === keep)) $(id).value = keep;
  };
  chooser('compare-with', false);
  const firstLoad = !$('mono-source').options.length;
  chooser('mono-source', true);
  if (firstLoad && ov.mono) $('mono-source').value = ov.mono;
  fillMonoTables();
  return ov;
}

async function loadTable(full) {
  const view = await api('table?i=' + state.table);
  if (view.error) { say(view.error); return; }
  state.view = view;
  for (const n of document.querySelectorAll('.table-name')) n.textContent = view.label;
  if (full || document.activeElement === document.body || !$('view-stages').contains(document.activeElement)) renderStages(view);
  if (full || !$('view-fusion').contains(document.activeElement)) renderFusionSteps(view);
  else $('fusion-chart').src = '/api/plot.svg?i=' + state.table + '&token=' + token + '&v=' + Date.now();
  await redrawBlend();
}

async function start() {
  const t0 = performance.now();
  for (const tab of document.querySelectorAll('nav [role=tab]')) tab.addEventListener('click', () => showView(tab.id.slice(4)));
  document.querySelector('nav').addEventListener('keydown', (e) => {
    const tabs = [...document.querySelectorAll('nav [role=tab]')];
    const i = tabs.indexOf(document.activeElement);
    if (i < 0 || (e.key !== 'ArrowRight' && e.key !== 'ArrowLeft')) return;
    const next = tabs[(i + (e.key === 'ArrowRight' ? 1 : tabs.length - 1)) % tabs.length];
    next.focus();
    showView(next.id.slice(4));
  });
  showView('tables');
  const overview = api('overview');  // both requests at once
  state.states = await api('states');
  const ov = await loadOverview(overview);
  const states = state.states;
  if (ov.error) { say(ov.error); return; }
  $('file-name').textContent = '— ' + ov.file;
  const h = ov.header;
  $('file-header').textContent = 'version ' + h.ver + ', ' + h.dateTime + ', subVer ' + h.subVer + ', ' + h.archName + ', ' + h.pdtName;
  $('table-choice').replaceChildren(...ov.tables.map((t) => el('option', { value: t.index }, t.label)));
  $('table-choice').addEventListener('change', () => { state.table = Number($('table-choice').value); loadTable(true); });
  renderTableSet(ov, states);
  for (const id of ['gain-start', 'gain-end']) $(id).max = ov.gainSteps - 1;
  for (const id of ['gain-start', 'gain-end', 'gain-coef']) $(id).addEventListener('input', redrawBlend);
  $('mono-source').addEventListener('change', () => { fillMonoTables(); redrawPair(); });
  $('mono-table').addEventListener('change', redrawPair);
  $('compare-run').addEventListener('click', runCompare);
  $('compare-changed-only').addEventListener('change', runCompare);
  $('table-choice').addEventListener('change', () => { if (compared) runCompare(); });
  $('sim-scenario').replaceChildren(...ov.scenarios.map((n) => el('option', { value: n }, n)));
  if (!ov.simulator) $('sim-summary').textContent = 'ispdsp-sim is not installed beside ispdsp-cfg: scenarios cannot be run.';
  for (const id of ['sim-scenario', 'sim-field']) $(id).addEventListener('change', runSimulation);
  $('sim-run').addEventListener('click', runSimulation);
  $('save-run').addEventListener('click', runSave);
  window.workbenchReadyMs = performance.now() - t0;  // the first view can be used
  window.workbenchReadySinceNavigationMs = performance.now();  // page, script and first answers included
  await loadTable(true);
  window.workbenchLoadedMs = performance.now() - t0;  // every view filled in
  say('ready in ' + window.workbenchReadyMs.toFixed(0) + ' ms, all views in ' + window.workbenchLoadedMs.toFixed(0) + ' ms');
}

start();
