# One shard of a list as a tool of the Common Workflow Language. The list's names begin with that of the folder `devices`.
cwlVersion: v1.2
class: CommandLineTool
label: Diagnoses one shard of a list of bundles
baseCommand: [arborist, detect, --log-level, none, --retries, "2", --exit-zero-on-bundle-errors]
requirements:
  InitialWorkDirRequirement:
    listing: [$(inputs.devices)]
inputs:
  devices: Directory
  list:
    type: File
    inputBinding: {prefix: --batch}
  rules:
    type: Directory
    inputBinding: {prefix: --rules}
  shard:
    type: string
    doc: I/N, as "3/8"
    inputBinding: {prefix: --shard}
  jobs:
    type: int
    default: 1
    inputBinding: {prefix: --jobs}
stdout: lines.jsonl
outputs:
  lines: stdout
successCodes: [0]
permanentFailCodes: [2, 3, 4]
temporaryFailCodes: [5, 137, 143]
