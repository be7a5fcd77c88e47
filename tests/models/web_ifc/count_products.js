// Opens models with web-ifc and prints what it found as JSON, one line per model:
//   {"schema": ..., "records": n, "products": {"IFCWALL": n, ...}, "meshes": n, "placed": n,
//    "geometries": {GUID: n, ...}}
// `products` counts by class, `meshes` the products with geometry, `placed` the geometries in them,
// which `geometries` tells for each of those products.
//
// Usage: node count_products.js FOLDER FILE...
// FOLDER holds node_modules; this script itself may lie elsewhere.
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import path from 'node:path';

const [folder, ...files] = process.argv.slice(2);
const require = createRequire(path.resolve(folder, 'package.json'));
const WebIFC = require('web-ifc');

const api = new WebIFC.IfcAPI();
await api.Init();
api.SetLogLevel(WebIFC.LogLevel.LOG_LEVEL_OFF);

function countProducts(model) {
  const counts = {};
  const lines = api.GetLineIDsWithType(model, WebIFC.IFCPRODUCT, true);
  for (let i = 0; i < lines.size(); i += 1) {
    const name = api.GetNameFromTypeCode(api.GetLineType(model, lines.get(i))).toUpperCase();
    counts[name] = (counts[name] ?? 0) + 1;
  }
  return counts;
}

function countGeometry(model) {
  let meshes = 0;
  let placed = 0;
  const geometries = {};
  api.StreamAllMeshes(model, (mesh) => {
    meshes += 1;
    placed += mesh.geometries.size();
    geometries[api.GetLine(model, mesh.expressID).GlobalId.value] = mesh.geometries.size();
  });
  return { meshes, placed, geometries };
}

for (const file of files) {
  const model = api.OpenModel(new Uint8Array(readFileSync(file)));
  if (model < 0) throw new Error(`${file} does not open`);
  console.log(JSON.stringify({
    schema: api.GetModelSchema(model),
    records: api.GetAllLines(model).size(),
    products: countProducts(model),
    ...countGeometry(model),
  }));
  api.CloseModel(model);
}
