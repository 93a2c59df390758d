// Stands for a header that declares none of the records.
