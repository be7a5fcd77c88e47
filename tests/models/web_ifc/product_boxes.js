// Opens models with web-ifc and prints where their products are as JSON, one line per model:
//   [[class, GUID, name, type, [lowest x, y, z, highest x, y, z]], ...]
// in metres, with z upwards; `type` is the name of the product's type, or null. Products without a
// shape are not there.
//
// Usage: node product_boxes.js FOLDER FILE...
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

function textOf(attribute) {
  return attribute?.value ?? null;
}

// Product -> name of its type.
function typesOf(model) {
  const types = new Map();
  const relations = api.GetLineIDsWithType(model, WebIFC.IFCRELDEFINESBYTYPE);
  for (let i = 0; i < relations.size(); i += 1) {
    const relation = api.GetLine(model, relations.get(i));
    const type = relation.RelatingType && api.GetLine(model, relation.RelatingType.value);
    for (const object of relation.RelatedObjects ?? []) {
      types.set(object.value, textOf(type?.Name));
    }
  }
  return types;
}

function widen(box, model, placed) {
  const geometry = api.GetGeometry(model, placed.geometryExpressID);
  const vertices = api.GetVertexArray(geometry.GetVertexData(), geometry.GetVertexDataSize());
  const m = placed.flatTransformation;
  for (let i = 0; i < vertices.length; i += 6) {
    const [x, y, z] = [vertices[i], vertices[i + 1], vertices[i + 2]];
    const at = [0, 1, 2].map((row) => m[row] * x + m[row + 4] * y + m[row + 8] * z + m[row + 12]);
    // web-ifc has y upwards.
    const upright = [at[0], -at[2], at[1]];
    for (let axis = 0; axis < 3; axis += 1) {
      box[axis] = Math.min(box[axis], upright[axis]);
      box[axis + 3] = Math.max(box[axis + 3], upright[axis]);
    }
  }
  geometry.delete();
}

for (const file of files) {
  const model = api.OpenModel(new Uint8Array(readFileSync(file)));
  if (model < 0) throw new Error(`${file} does not open`);
  const types = typesOf(model);
  const products = [];
  api.StreamAllMeshes(model, (mesh) => {
    const box = [Infinity, Infinity, Infinity, -Infinity, -Infinity, -Infinity];
    for (let i = 0; i < mesh.geometries.size(); i += 1) {
      widen(box, model, mesh.geometries.get(i));
    }
    if (!Number.isFinite(box[0])) return;
    const product = api.GetLine(model, mesh.expressID);
    products.push([api.GetNameFromTypeCode(api.GetLineType(model, mesh.expressID)).toUpperCase(),
      product.GlobalId.value, textOf(product.Name), types.get(mesh.expressID) ?? null, box]);
  });
  console.log(JSON.stringify(products));
  api.CloseModel(model);
}
