// Says how many points a LAZ file holds and the SHA-256 of their records in file order: `node judge.mjs FILE`.
// The points of a COPC file are read through its tree as well, and both ways must agree. One file a process, since
// the decoder does not survive a file that it cannot read.
import { Copc } from 'copc'
import { createLazPerf } from 'laz-perf'
import { createHash } from 'node:crypto'
import { readFileSync } from 'node:fs'

const bytes = readFileSync(process.argv[2])
const lazPerf = await createLazPerf()

function wholeFile() {
  const file = lazPerf._malloc(bytes.length)
  lazPerf.HEAPU8.set(bytes, file)
  const laz = new lazPerf.LASZip()
  laz.open(file, bytes.length)
  const length = laz.getPointLength()
  const point = lazPerf._malloc(length)
  const hash = createHash('sha256')
  const count = laz.getCount()
  for (let i = 0; i < count; ++i) {
    laz.getPoint(point)
    hash.update(lazPerf.HEAPU8.subarray(point, point + length))
  }
  return `${count} ${hash.digest('hex')}`
}

async function throughTree() {
  const read = async (begin, end) => bytes.subarray(begin, end)
  const { header, info } = await Copc.create(read)
  const nodes = []
  const pages = [info.rootHierarchyPage]
  while (pages.length > 0) {
    const subtree = await Copc.loadHierarchyPage(read, pages.pop())
    nodes.push(...Object.values(subtree.nodes).filter((node) => node.pointCount > 0))
    pages.push(...Object.values(subtree.pages))
  }
  nodes.sort((a, b) => a.pointDataOffset - b.pointDataOffset)
  const hash = createHash('sha256')
  let count = 0
  for (const node of nodes) {
    hash.update(await Copc.loadPointDataBuffer(read, header, node, lazPerf))
    count += node.pointCount
  }
  return `${count} ${hash.digest('hex')}`
}

const verdict = wholeFile()
if (bytes.toString('latin1', 377, 381) === 'copc') {
  const other = await throughTree()
  if (other !== verdict) throw new Error(`The tree holds ${other}, the file ${verdict}.`)
}
console.log(verdict)
