# Reads a file of tools/check-formats with the package that is named and compares it with truth.tsv.
reader <- commandArgs(TRUE)[1]
truth <- read.delim("truth.tsv", header = FALSE, quote = "", colClasses = "character", encoding = "UTF-8")
names(truth) <- c("sample", "group", "bands")
byGroup <- truth[order(match(truth$group, unique(truth$group))), ]

# The names in the file of those in the study.
fitted <- function(file, before) {
  changes <- read.delim(paste0(file, ".names.tsv"), quote = "", colClasses = "character", encoding = "UTF-8")
  changes <- changes[changes$Kind == "sample", ]
  changes[[3]][match(before, changes[[2]])]
}

same <- function(a, b) {
  if (!identical(unname(a), unname(b))) {
    print(a); print(b)
    stop("differs from the table")
  }
}

done <- function(...) cat(": ", ..., "\n", sep = "")
asked <- function(package) suppressMessages(library(package, character.only = TRUE))

switch(reader,
  ape = {
    asked("ape")
    x <- read.nexus.data("sample.nexus")
    same(names(x), fitted("sample.nexus", truth$sample))
    same(sapply(x, paste, collapse = ""), truth$bands)
    x <- read.nexus.data("sample.mrbayes")
    same(sapply(x, paste, collapse = ""), truth$bands)
    done(length(x), " samples, every cell")
  },
  phangorn = {
    asked("phangorn")
    x <- read.phyDat("sample.phylip", format = "phylip", type = "USER", levels = c("0", "1"), ambiguity = "?")
    same(names(x), fitted("sample.phylip", truth$sample))
    same(apply(as.character(x), 1, paste, collapse = ""), truth$bands)
    n <- phyDat(ape::read.nexus.data("sample.nexus"), type = "USER", levels = c("0", "1"), ambiguity = "?")
    same(apply(as.character(n), 1, paste, collapse = ""), truth$bands)
    done(length(x), " samples, every cell")
  },
  adegenet = {
    asked("adegenet")
    t <- read.csv("sample.r", check.names = FALSE, encoding = "UTF-8")
    same(t$Sample, truth$sample)
    x <- df2genind(t[, -(1:2)], ind.names = t$Sample, pop = t$Pop, type = "PA", ploidy = 1)
    same(apply(ifelse(is.na(x@tab), "?", x@tab), 1, paste, collapse = ""), truth$bands)
    same(as.character(x@pop), truth$group)
    g <- read.csv("sample.genalex", skip = 2, check.names = FALSE, encoding = "UTF-8")
    same(g$Sample, byGroup$sample)
    same(apply(g[, -(1:2)], 1, function(r) paste(c("?", "0", "1")[r + 2], collapse = "")), byGroup$bands)
    same(unlist(read.csv("sample.genalex", header = FALSE, nrows = 1)[1:5]), c(40L, 12L, 2L, table(truth$group)[[1]], table(truth$group)[[2]]))
    done(nInd(x), " samples, ", nLoc(x), " loci, ", nPop(x), " groups, every cell")
  },
  structure = {
    asked("adegenet")
    lines <- readLines("sample.structure")
    writeLines(lines[-2], "sample.stru")
    x <- read.structure("sample.stru", n.ind = 12, n.loc = 40, onerowperind = FALSE, col.lab = 1, col.pop = 2,
                        col.others = 0, row.marknames = 1, NA.char = "-9", ask = FALSE, quiet = TRUE)
    alleles <- sapply(names(x@all.names), function(l) x@tab[, paste0(l, ".01")])
    same(apply(ifelse(is.na(alleles), "?", alleles / 2), 1, paste, collapse = ""), byGroup$bands)
    same(indNames(x), fitted("sample.structure", byGroup$sample))
    same(as.integer(as.character(x@pop)), match(byGroup$group, unique(byGroup$group)))
    done(nInd(x), " samples, every cell, without the row of recessive alleles")
  },
  vegan = {
    asked("vegan"); asked("ape")
    t <- read.csv("sample.r", check.names = FALSE, encoding = "UTF-8")
    d <- as.matrix(vegdist(t[, -(1:2)], "jaccard", binary = TRUE, na.rm = TRUE))
    p <- as.matrix(read.table("sample.distances", skip = 1)[, -1])
    stopifnot(max(abs(d - p)) < 1e-6)
    done("the distances that it makes of the table are those of ours to the digits written")
  },
  newick = {
    asked("ape")
    x <- read.tree("sample.nwk")
    same(sort(x$tip.label), sort(fitted("sample.nwk", truth$sample)))
    p <- as.matrix(read.table("sample.distances", skip = 1)[, -1])
    u <- cophenetic(hclust(as.dist(p), "average"))
    c <- cophenetic(x)[fitted("sample.nwk", truth$sample), fitted("sample.nwk", truth$sample)]
    stopifnot(max(abs(as.matrix(u) - c)) < 1e-5, sum(x$node.label != "") == 10)
    done("the tree of hclust, with support at ", sum(x$node.label != ""), " nodes")
  },
  stop("no such reader"))
