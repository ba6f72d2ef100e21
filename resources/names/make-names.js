#!/usr/bin/env node
// Rebuilds well-known-names.json from the English first-name lists of @faker-js/faker
// (MIT licence). Install the package anywhere outside the repository first:
//
//   npm install --prefix /tmp/names-src @faker-js/faker
//   node resources/names/make-names.js /tmp/names-src
//
// The names are joined into one regular-expression alternation, so only plain words
// ([A-Za-z]+) are kept. Longer names come first: the alternation takes the first name that
// fits, and "Annabelle" must be tried before "Anna" or "Ann".
'use strict';

const fs = require('fs');
const path = require('path');
const { createRequire } = require('module');

const installDir = path.resolve(process.argv[2] || '/tmp/names-src');
const requireFromInstall = createRequire(path.join(installDir, 'package.json'));
const { en } = requireFromInstall('@faker-js/faker');

const lists = en.person.first_name;
const byKey = new Map();
for (const list of [lists.generic, lists.female, lists.male]) {
  for (const name of list || []) {
    if (/^[A-Za-z]+$/.test(name) && !byKey.has(name.toLowerCase())) {
      byKey.set(name.toLowerCase(), name);
    }
  }
}

const names = [...byKey.values()].sort((a, b) =>
  b.length - a.length || (a < b ? -1 : a > b ? 1 : 0));

const out = path.join(__dirname, 'well-known-names.json');
fs.writeFileSync(out, '[\n' + names.map((n) => '  ' + JSON.stringify(n)).join(',\n') + '\n]\n');
console.log(`${names.length} names written to ${out}`);
