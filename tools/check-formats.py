"""Reads a file of tools/check-formats with the library that is named and compares it with truth.tsv."""
import sys

lines = [line.rstrip("\n").split("\t") for line in open("truth.tsv", encoding="utf-8")]
names = {}
for line in open("sample.nexus.names.tsv", encoding="utf-8"):
    kind, before, after = line.rstrip("\n").split("\t")
    if kind == "sample":
        names[before] = after
truth = {names[sample]: bands for sample, _, bands in lines}


def biopython():
    from Bio.Nexus import Nexus

    nexus = Nexus.Nexus("sample.nexus")
    groups = {}
    for sample, group, _ in lines:
        groups.setdefault(group, []).append(names[sample])
    assert sorted(map(sorted, nexus.taxsets.values())) == sorted(map(sorted, groups.values())), nexus.taxsets
    return {taxon: str(nexus.matrix[taxon]) for taxon in nexus.taxlabels}


def dendropy():
    import dendropy

    table = dendropy.StandardCharacterMatrix.get(path="sample.nexus", schema="nexus", preserve_underscores=True)
    tree = dendropy.Tree.get(path="sample.nwk", schema="newick", preserve_underscores=True)
    assert len(tree.leaf_nodes()) == len(truth)
    return {taxon.label: table[taxon].symbols_as_string() for taxon in table}


read = {"biopython": biopython, "dendropy": dendropy}[sys.argv[1]]()
assert read == truth, [(key, read.get(key), truth[key]) for key in truth if read.get(key) != truth[key]]
print(f": {len(read)} samples, every cell")
