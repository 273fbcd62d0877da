// A Parquet file by a reader that is not DuckDB: its rows as lines of JSON, or, with the word
// "columns" behind, a line for each column with its codec and encodings.
//
//   node read_parquet.mjs NODE_MODULES FILE [columns]
import { pathToFileURL } from 'node:url'

const [modules, file, wanted] = process.argv.slice(2)
const load = (path) => import(pathToFileURL(`${modules}/${path}`))
const { asyncBufferFromFile } = await load('hyparquet/src/node.js')
const { parquetMetadataAsync, parquetReadObjects } = await load('hyparquet/src/index.js')
const { compressors } = await load('hyparquet-compressors/src/index.js')

const buffer = await asyncBufferFromFile(file)
if (wanted === 'columns') {
  const { row_groups: groups } = await parquetMetadataAsync(buffer)
  for (const { meta_data: column } of groups[0].columns) {
    console.log(column.path_in_schema.join('.'), column.codec, ...column.encodings)
  }
} else {
  for (const row of await parquetReadObjects({ file: buffer, compressors })) {
    console.log(JSON.stringify(row, (_, value) => (typeof value === 'bigint' ? Number(value) : value)))
  }
}
